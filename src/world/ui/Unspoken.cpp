#include "world/ui/Unspoken.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QWidget>

namespace {

constexpr const char *property = "dustmereUnspoken";

class Invisible : public QAccessibleWidget
{
public:
    explicit Invisible(QWidget *widget) : QAccessibleWidget(widget, QAccessible::Graphic) {}

    [[nodiscard]] QAccessible::State state() const override
    {
        QAccessible::State s = QAccessibleWidget::state();
        s.invisible = true;
        return s;
    }
    [[nodiscard]] QString text(QAccessible::Text) const override { return {}; }
};

QAccessibleInterface *factory(const QString &, QObject *object)
{
    if (object && object->isWidgetType() && object->property(property).toBool())
        return new Invisible(static_cast<QWidget *>(object));
    return nullptr;
}

} // namespace

void Unspoken::mark(QWidget *widget)
{
    static const bool installed = [] {
        QAccessible::installFactory(factory);
        return true;
    }();
    Q_UNUSED(installed);
    widget->setProperty(property, true);
}
