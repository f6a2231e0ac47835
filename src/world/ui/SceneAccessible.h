#pragma once

#include <QAccessibleWidget>
#include <string>

class WorldScene;

// What assistive technology finds on the map: the hero, told where he stands, and one entry
// per monster, named by its territory and tier, with the actions "Enter" and "Slay".
class SceneAccessible : public QAccessibleWidget
{
public:
    explicit SceneAccessible(WorldScene *scene);

    [[nodiscard]] int childCount() const override;
    [[nodiscard]] QAccessibleInterface *child(int index) const override;
    [[nodiscard]] int indexOfChild(const QAccessibleInterface *child) const override;

    static void install();

private:
    [[nodiscard]] WorldScene *scene() const;
};
