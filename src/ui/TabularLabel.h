#pragma once

#include <QWidget>

// A one-line label whose digits are tabular figures (see TabularDigits), in its palette's text
// colour: sizes and counts that change in place keep their width.
class TabularLabel : public QWidget
{
    Q_OBJECT

public:
    explicit TabularLabel(QWidget *parent = nullptr);

    [[nodiscard]] const QString &text() const { return m_text; }
    void setText(const QString &text);
    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QString m_text;
};
