#include "Norvane/FilterAccessibility.h"

#include "Norvane/FilterControl.h"

#include <QAccessibleWidget>
#include <QPointer>

namespace {

class Segment : public QAccessibleInterface, public QAccessibleActionInterface {
public:
    Segment(FilterControl *owner, int number) : control(owner), segment(number) {}

    [[nodiscard]] bool isValid() const override { return !control.isNull(); }
    [[nodiscard]] QObject *object() const override { return nullptr; }
    [[nodiscard]] QWindow *window() const override
    {
        return control ? control->window()->windowHandle() : nullptr;
    }
    [[nodiscard]] QAccessible::Role role() const override { return QAccessible::PageTab; }
    [[nodiscard]] QAccessibleInterface *parent() const override
    {
        return QAccessible::queryAccessibleInterface(control);
    }
    [[nodiscard]] QAccessibleInterface *child(int) const override { return nullptr; }
    [[nodiscard]] QAccessibleInterface *childAt(int, int) const override { return nullptr; }
    [[nodiscard]] int childCount() const override { return 0; }
    [[nodiscard]] int indexOfChild(const QAccessibleInterface *) const override { return -1; }
    void setText(QAccessible::Text, const QString &) override {}

    [[nodiscard]] QString text(QAccessible::Text kind) const override
    {
        return control && kind == QAccessible::Name ? control->segmentLabel(segment) : QString();
    }

    [[nodiscard]] QRect rect() const override
    {
        if (!control)
            return {};
        const QRect frame = control->segmentRect(segment);
        return {control->mapToGlobal(frame.topLeft()), frame.size()};
    }

    [[nodiscard]] QAccessible::State state() const override
    {
        QAccessible::State state;
        state.invalid = control.isNull();
        state.invisible = !control || !control->isVisible();
        state.selectable = true;
        state.selected = control && control->selectedSegment() == segment;
        return state;
    }

    void *interface_cast(QAccessible::InterfaceType type) override
    {
        return type == QAccessible::ActionInterface ? static_cast<QAccessibleActionInterface *>(this)
                                                    : nullptr;
    }

    [[nodiscard]] QStringList actionNames() const override { return {pressAction()}; }
    [[nodiscard]] QStringList keyBindingsForAction(const QString &) const override { return {}; }
    void doAction(const QString &action) override
    {
        if (control && action == pressAction())
            control->choose(segment);
    }

private:
    QPointer<FilterControl> control;
    int segment;
};

class TabList : public QAccessibleWidget {
public:
    explicit TabList(FilterControl *control) : QAccessibleWidget(control, QAccessible::PageTabList)
    {
        for (int i = 0; i < control->segmentCount(); ++i)
            segments.push_back(QAccessible::registerAccessibleInterface(new Segment(control, i)));
    }

    ~TabList() override
    {
        for (const auto id : segments)
            QAccessible::deleteAccessibleInterface(id);
    }

    [[nodiscard]] int childCount() const override { return static_cast<int>(segments.size()); }

    [[nodiscard]] QAccessibleInterface *child(int index) const override
    {
        if (index < 0 || index >= childCount())
            return nullptr;
        return QAccessible::accessibleInterface(segments[static_cast<size_t>(index)]);
    }

    [[nodiscard]] QAccessibleInterface *childAt(int x, int y) const override
    {
        for (int i = 0; i < childCount(); ++i) {
            if (child(i)->rect().contains(x, y))
                return child(i);
        }
        return nullptr;
    }

    [[nodiscard]] int indexOfChild(const QAccessibleInterface *wanted) const override
    {
        for (int i = 0; i < childCount(); ++i) {
            if (child(i) == wanted)
                return i;
        }
        return -1;
    }

private:
    std::vector<QAccessible::Id> segments;
};

QAccessibleInterface *interfaceOf(const QString &, QObject *object)
{
    auto *control = qobject_cast<FilterControl *>(object);
    return control ? new TabList(control) : nullptr;
}

} // namespace

namespace FilterAccessibility {

void install()
{
    static const bool installed = [] {
        QAccessible::installFactory(interfaceOf);
        return true;
    }();
    Q_UNUSED(installed)
}

void announceSelection(FilterControl &control)
{
    if (!QAccessible::isActive())
        return;
    QAccessibleEvent event(&control, QAccessible::Selection);
    event.setChild(control.selectedSegment());
    QAccessible::updateAccessibility(&event);
}

} // namespace FilterAccessibility
