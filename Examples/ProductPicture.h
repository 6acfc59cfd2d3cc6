#pragma once

#include <QtGui/QImage>

/// Pictures of the store's products, drawn in code. Any thread.
namespace ProductPicture {

enum class Kind { Vase, Bottle, Lamp, Pendant, Chair, Stool, Mug, Bowl, Planter, Clock };

/// A thing in its main colour and an accent colour on a transparent background; 480 pixels square.
[[nodiscard]] QImage draw(Kind kind, QRgb colour, QRgb accent);

} // namespace ProductPicture
