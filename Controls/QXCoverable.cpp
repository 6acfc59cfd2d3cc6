#include "Controls/QXCoverable.h"

#include <QtGui/QAccessibleObject>
#include <QtQuick/QQuickWindow>

namespace {

/// What assistive technologies learn of a part that is covered.
class Covered final : public QAccessibleObject
{
public:
    explicit Covered(QXCoverable &item) : QAccessibleObject(&item) {}

    [[nodiscard]] QAccessibleInterface *parent() const override
    {
        const auto *const item = static_cast<QXCoverable *>(object());
        for (QQuickItem *outer = item->parentItem(); outer; outer = outer->parentItem()) {
            if (QAccessibleInterface *const told = QAccessible::queryAccessibleInterface(outer))
                return told;
        }
        return QAccessible::queryAccessibleInterface(item->window());
    }

    [[nodiscard]] QAccessibleInterface *child(int /*index*/) const override { return nullptr; }
    [[nodiscard]] int childCount() const override { return 0; }
    [[nodiscard]] int indexOfChild(const QAccessibleInterface * /*child*/) const override { return -1; }
    [[nodiscard]] QString text(QAccessible::Text /*kind*/) const override { return {}; }
    [[nodiscard]] QAccessible::Role role() const override { return QAccessible::Grouping; }

    [[nodiscard]] QAccessible::State state() const override
    {
        QAccessible::State state;
        state.invisible = true;
        return state;
    }
};

QAccessibleInterface *makeInterface(const QString &className, QObject *object)
{
    const bool isOurs = className == QLatin1StringView(QXCoverable::staticMetaObject.className());
    auto *const item = isOurs ? qobject_cast<QXCoverable *>(object) : nullptr;
    return item ? new Covered(*item) : nullptr;
}

} // namespace

QXCoverable::QXCoverable(QQuickItem *parent) : QQuickItem(parent)
{
    [[maybe_unused]] static const bool isInstalled = [] {
        QAccessible::installFactory(makeInterface);
        return true;
    }();
}
