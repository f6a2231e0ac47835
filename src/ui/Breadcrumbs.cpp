#include "ui/Breadcrumbs.h"

#include "game/Game.h"
#include "platform/Appearance.h"
#include "platform/DisplayName.h"
#include "platform/Icons.h"
#include "scan/Fmt.h"
#include "session/Model.h"
#include "ui/TabularLabel.h"
#include "ui/screens/TextStyle.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QScrollBar>
#include <QTimer>
#include <QToolButton>

Breadcrumbs::Breadcrumbs(Model &model, Game &game, QWidget *parent)
    : QScrollArea(parent), m_model(model), m_game(game), m_content(new QWidget),
      m_row(new QHBoxLayout(m_content))
{
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setWidgetResizable(true);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    m_row->setContentsMargins(0, 0, 0, 0);
    m_row->setSpacing(2);
    m_content->setAutoFillBackground(false);
    viewport()->setAutoFillBackground(false);
    setWidget(m_content);
    for (const auto signal : {&Model::currentChanged, &Model::changed, &Model::rootChanged,
                              &Model::previousChanged, &Model::originChanged})
        connect(&model, signal, this, &Breadcrumbs::rebuild);
    rebuild();
}

QSize Breadcrumbs::sizeHint() const
{
    return {std::min(m_content->sizeHint().width(), 520), m_content->sizeHint().height()};
}

// A scroll area asks for 68 × 68 by default; the trail only needs one line.
QSize Breadcrumbs::minimumSizeHint() const
{
    return {60, m_content->sizeHint().height()};
}

QList<QToolButton *> Breadcrumbs::crumbs() const
{
    return m_content->findChildren<QToolButton *>(QString(), Qt::FindDirectChildrenOnly);
}

void Breadcrumbs::rebuild()
{
    // A layout shows new children only once the event loop runs, and a bar that lays itself out
    // before then would size the trail by an empty row: show them now.
    const auto add = [this](QWidget *w) {
        m_row->addWidget(w);
        w->show();
    };
    while (QLayoutItem *item = m_row->takeAt(0)) {
        delete item->widget();
        delete item;
    }
    m_size = nullptr;
    const NodePtr current = m_model.current();
    if (!current)
        return;
    const QColor ink = Appearance::ink(palette());
    QColor secondary = ink;
    secondary.setAlphaF(0.6);
    const std::vector<NodePtr> chain = current->chain();
    for (std::size_t i = 0; i < chain.size(); ++i) {
        const NodePtr &node = chain[i];
        if (i > 0) {
            auto *chevron = new QLabel(m_content);
            chevron->setPixmap(
                Icons::symbol(QStringLiteral("chevron.right"), secondary, 10).pixmap(10, 10));
            add(chevron);
        }
        auto *crumb = new QToolButton(m_content);
        crumb->setAutoRaise(true);
        crumb->setText(DisplayName::of(node->name()));
        const QString path = DisplayName::of(node->path());
        crumb->setToolTip(path);
        QFont f = crumb->font();
        f.setBold(node == current);
        crumb->setFont(f);
        std::weak_ptr<Node> weak = node;
        connect(crumb, &QToolButton::clicked, this, [this, weak] {
            if (const NodePtr n = weak.lock())
                m_model.go(n, m_game);
        });
        add(crumb);
    }
    m_size = new TabularLabel(m_content);
    QString size = QStringLiteral("· ") + Fmt::bytes(current->size());
    if (const std::optional<std::int64_t> grown = m_model.grown(*current)) {
        size += QStringLiteral(" · %1 since %2")
                    .arg(Fmt::growth(*grown), Fmt::day(m_model.previous()->summary().scanned));
    }
    // A realm not scanned just now says where and when it was.
    const RealmOrigin &origin = m_model.origin();
    if (origin.source == RealmOrigin::Source::remembered) {
        size += QStringLiteral(" · remembered from %1 · rescanning…")
                    .arg(Fmt::ago(origin.scanned, QDateTime::currentDateTime()));
    } else if (origin.source == RealmOrigin::Source::report) {
        size +=
            QStringLiteral(" · read-only report of %1, scanned %2")
                .arg(origin.host.isEmpty() ? QStringLiteral("an unnamed computer") : origin.host,
                     origin.scanned.isValid() ? Fmt::moment(origin.scanned)
                                              : QStringLiteral("at an unknown time"));
    }
    m_size->setText(size);
    TextStyle::makeSecondary(m_size);
    add(m_size);
    m_row->addStretch(1);
    updateGeometry();
    QTimer::singleShot(0, this, &Breadcrumbs::scrollToEnd);
}

void Breadcrumbs::scrollToEnd()
{
    horizontalScrollBar()->setValue(horizontalScrollBar()->maximum());
}

void Breadcrumbs::changeEvent(QEvent *event)
{
    QScrollArea::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        rebuild();
}

void Breadcrumbs::resizeEvent(QResizeEvent *event)
{
    QScrollArea::resizeEvent(event);
    scrollToEnd();
}
