#include "Quorvix/QXApiValueKind.h"

#include "Platform/Localized.h"

#include <iterator>

namespace {

/// In the order of the enumerators.
constexpr const char *names[] = {
    QT_TRANSLATE_NOOP("Quorvix", "Object"), QT_TRANSLATE_NOOP("Quorvix", "Array"),
    QT_TRANSLATE_NOOP("Quorvix", "String"), QT_TRANSLATE_NOOP("Quorvix", "Number"),
    QT_TRANSLATE_NOOP("Quorvix", "Bool"),   QT_TRANSLATE_NOOP("Quorvix", "Null"),
};
static_assert(std::size(names) == size_t(QXApiValueKind::null) + 1);

} // namespace

QString displayName(QXApiValueKind kind)
{
    return Quorvix::localized(names[size_t(kind)]);
}
