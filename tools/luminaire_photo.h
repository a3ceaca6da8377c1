// Simple drawings of luminaires in place of photos. Needs no display.
#pragma once

#include <QImage>
#include <QStringList>

namespace quorvane {

// The names of all drawings.
QStringList LuminaireDrawings();

// The drawing of that name, 400 by 300 pixels, or a null image.
QImage DrawLuminaire(const QString& drawing);

}  // namespace quorvane
