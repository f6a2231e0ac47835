#pragma once

#include <QDialog>
#include <QString>

class QLineEdit;
class QPushButton;

// Asks for the name a territory shows on the map; the folder on disk keeps its own.
class RenameDialog : public QDialog
{
    Q_OBJECT

public:
    // `folderName` is the folder's real name, for display; `name` fills the field.
    RenameDialog(const QString &folderName, const QString &name, QWidget *parent = nullptr);

    [[nodiscard]] QString name() const;
    [[nodiscard]] QLineEdit *nameField() const { return m_field; }
    [[nodiscard]] QPushButton *saveButton() const { return m_save; }
    [[nodiscard]] QPushButton *defaultButton() const { return m_default; }
    [[nodiscard]] QPushButton *cancelButton() const { return m_cancel; }

Q_SIGNALS:
    void saveRequested(const QString &name);
    void defaultRequested();

private:
    QLineEdit *m_field;
    QPushButton *m_save;
    QPushButton *m_default;
    QPushButton *m_cancel;
};
