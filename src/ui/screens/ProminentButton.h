#pragma once

#include <QPushButton>

// The one emphasised action of a screen: filled with the accent colour, text in white.
class ProminentButton : public QPushButton
{
    Q_OBJECT

public:
    explicit ProminentButton(const QString &text, QWidget *parent = nullptr);

    // The symbol is tinted to match the text, so it is given by name.
    void setSymbol(const QString &symbol);

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;
    void enterEvent(QEnterEvent *event) override;
    void leaveEvent(QEvent *event) override;

private:
    QString m_symbol;
    bool m_hot = false;
};
