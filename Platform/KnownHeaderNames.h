#pragma once

#include <QtCore/QString>
#include <QtCore/QStringView>

namespace Quorvix {

/// The names that most headers have, each with a number, so that a trace does not keep their texts. The
/// numbers exist only within one process.
namespace KnownHeaderNames {

/// The number of a name in exactly this spelling; 0 for a name that is not known. Any thread.
[[nodiscard]] uchar number(QStringView text) noexcept;
/// The name with this number, which must not be 0. All copies share one text. Any thread.
[[nodiscard]] const QString &name(uchar number);

} // namespace KnownHeaderNames

} // namespace Quorvix
