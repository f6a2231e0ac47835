#pragma once

#include <QWidget>

// One line of text that gives up width gracefully: it never asks for more than its minimum and
// elides what does not fit, so long paths cannot push a row's buttons out of view.
class ElidedLabel : public QWidget
{
    Q_OBJECT

public:
    explicit ElidedLabel(const QString &text = {}, Qt::TextElideMode mode = Qt::ElideRight,
                         QWidget *parent = nullptr);

    [[nodiscard]] const QString &text() const { return m_text; }
    void setText(const QString &text);
    void setOpacity(double opacity);
    void setAlignment(Qt::Alignment alignment);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QString m_text;
    Qt::TextElideMode m_mode;
    Qt::Alignment m_alignment = Qt::AlignLeft | Qt::AlignVCenter;
    double m_opacity = 1;
};
