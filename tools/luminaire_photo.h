// Plain drawings of luminaires, for want of photos. Drawn without a display.
#pragma once

#include <QImage>
#include <QStringList>

namespace quorvane {

// The names of the drawings there are.
QStringList LuminaireDrawings();

// The drawing of that name, 400 by 300; a null image when there is none.
QImage DrawLuminaire(const QString& drawing);

}  // namespace quorvane
