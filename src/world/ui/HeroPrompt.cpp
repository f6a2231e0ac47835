#include "world/ui/HeroPrompt.h"

#include "platform/Appearance.h"
#include "platform/Icons.h"

#include <QEvent>
#include <QGraphicsOpacityEffect>
#include <QHBoxLayout>
#include <QPainter>
#include <QPainterPath>
#include <QPushButton>
#include <QToolButton>
#include <QVariantAnimation>

HeroPrompt::HeroPrompt(bool reduceMotion, QWidget *parent)
    : QWidget(parent), m_reduceMotion(reduceMotion),
      m_enterButton(new QPushButton(QStringLiteral("Enter"), this)),
      m_fightButton(new QPushButton(QStringLiteral("F Fight"), this)),
      m_renameButton(new QToolButton(this))
{
    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(4, 4, 4, 4);
    row->setSpacing(6);
    row->setSizeConstraint(QLayout::SetFixedSize);
    for (QAbstractButton *b : {static_cast<QAbstractButton *>(m_enterButton),
                               static_cast<QAbstractButton *>(m_fightButton),
                               static_cast<QAbstractButton *>(m_renameButton)}) {
        b->setFocusPolicy(Qt::NoFocus);
        b->setCursor(Qt::PointingHandCursor);
        row->addWidget(b);
    }
    m_renameButton->setToolTip(QStringLiteral("Name this territory (N)"));
    m_renameButton->setAccessibleName(QStringLiteral("Name this territory"));
    m_renameButton->setAutoRaise(false);
    refreshIcons();

    connect(m_enterButton, &QPushButton::clicked, this, &HeroPrompt::enterClicked);
    connect(m_fightButton, &QPushButton::clicked, this, &HeroPrompt::fightClicked);
    connect(m_renameButton, &QToolButton::clicked, this, &HeroPrompt::renameClicked);

    if (!m_reduceMotion) {
        m_fade = new QGraphicsOpacityEffect(this);
        m_fade->setOpacity(1);
        m_fade->setEnabled(false);
        setGraphicsEffect(m_fade);
        m_fadeIn = new QVariantAnimation(this);
        m_fadeIn->setStartValue(0.0);
        m_fadeIn->setEndValue(1.0);
        m_fadeIn->setDuration(150);
        m_fadeIn->setEasingCurve(QEasingCurve::OutCubic);
        connect(m_fadeIn, &QVariantAnimation::valueChanged, this,
                [this](const QVariant &v) { m_fade->setOpacity(v.toDouble()); });
        connect(m_fadeIn, &QVariantAnimation::finished, this,
                [this] { m_fade->setEnabled(false); });
    }
    setChoices(false, false, false);
}

void HeroPrompt::setChoices(bool enter, bool fight, bool rename)
{
    if (enter == m_enter && fight == m_fight && rename == m_rename && isVisible() == hasChoices())
        return;
    m_enter = enter;
    m_fight = fight;
    m_rename = rename;
    m_enterButton->setVisible(enter);
    m_fightButton->setVisible(fight);
    m_renameButton->setVisible(rename);
    adjustSize();
    setVisible(hasChoices());
    if (m_fadeIn && hasChoices()) {
        m_fade->setEnabled(true);
        m_fadeIn->stop();
        m_fadeIn->start();
    }
}

void HeroPrompt::paintEvent(QPaintEvent *)
{
    QPainter p(this);
    p.setRenderHint(QPainter::Antialiasing);
    QColor fill = palette().color(QPalette::Window);
    fill.setAlphaF(0.88f);
    QColor edge = Appearance::ink(palette());
    edge.setAlphaF(0.15f);
    QPainterPath box;
    box.addRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), 8, 8);
    p.fillPath(box, fill);
    p.strokePath(box, QPen(edge, 1));
}

void HeroPrompt::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::PaletteChange)
        refreshIcons();
    QWidget::changeEvent(event);
}

void HeroPrompt::refreshIcons()
{
    m_renameButton->setIcon(
        Icons::symbol(QStringLiteral("pencil"), Appearance::ink(palette()), 16));
}
