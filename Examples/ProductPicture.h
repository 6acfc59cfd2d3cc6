#pragma once

#include <QtGui/QImage>

/// Still lifes of the store's goods, drawn in code. Any thread.
namespace ProductPicture {

enum class Kind { Vase, Bottle, Lamp, Pendant, Chair, Stool, Mug, Bowl, Planter, Clock };

/// A thing in its main colour and an accent, standing on a transparent ground; 480 pixels square.
[[nodiscard]] QImage draw(Kind kind, QRgb colour, QRgb accent);

} // namespace ProductPicture
