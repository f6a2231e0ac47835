#pragma once

#include <QButtonGroup>
#include <QIcon>
#include <QWidget>

class QHBoxLayout;
class QToolButton;

// A row of joined, mutually exclusive buttons with one selected, like a segmented picker.
class SegmentedControl : public QWidget
{
    Q_OBJECT

public:
    explicit SegmentedControl(const QString &accessibleName, QWidget *parent = nullptr);

    QToolButton *addSegment(const QString &text, const QIcon &icon, const QString &help);
    void setSelected(int index);
    [[nodiscard]] int selected() const { return m_group.checkedId(); }
    [[nodiscard]] QToolButton *segment(int index) const;

Q_SIGNALS:
    void selectedChanged(int index);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QButtonGroup m_group;
    QHBoxLayout *m_layout;
};
