#include "world/ui/RenameDialog.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

RenameDialog::RenameDialog(const QString &folderName, const QString &name, QWidget *parent)
    : QDialog(parent), m_field(new QLineEdit(name, this)),
      m_save(new QPushButton(QStringLiteral("Save"), this)),
      m_default(new QPushButton(QStringLiteral("Use default name"), this)),
      m_cancel(new QPushButton(QStringLiteral("Cancel"), this))
{
    setWindowTitle(QStringLiteral("Name this territory"));
    setModal(true);
    auto *column = new QVBoxLayout(this);
    column->setSpacing(10);

    auto *title = new QLabel(QStringLiteral("Name this territory"), this);
    QFont bold = title->font();
    bold.setWeight(QFont::Bold);
    title->setFont(bold);
    column->addWidget(title);

    auto *message = new QLabel(QStringLiteral("Only the name on your map changes. The folder ") +
                                   folderName + QStringLiteral(" keeps its real name on disk."),
                               this);
    message->setWordWrap(true);
    message->setTextFormat(Qt::PlainText);
    column->addWidget(message);

    m_field->setPlaceholderText(QStringLiteral("Name"));
    m_field->selectAll();
    column->addWidget(m_field);

    auto *buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(m_save);
    buttons->addWidget(m_default);
    buttons->addWidget(m_cancel);
    column->addLayout(buttons);
    m_save->setDefault(true);

    connect(m_save, &QPushButton::clicked, this, [this] {
        Q_EMIT saveRequested(m_field->text());
        accept();
    });
    connect(m_default, &QPushButton::clicked, this, [this] {
        Q_EMIT defaultRequested();
        accept();
    });
    connect(m_cancel, &QPushButton::clicked, this, &QDialog::reject);
}

QString RenameDialog::name() const
{
    return m_field->text();
}
