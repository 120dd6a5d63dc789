// The host's colours, pictures and fonts on screen: an OLE colour is either a
// colour of its own (0x00BBGGRR) or, with its top bit set, one of the
// system's colours, which Qt keeps in the palette.
#pragma once
#include <QColor>
#include <QFont>
#include <QPalette>
#include <QPixmap>
#include <cstdint>

#include "platform/host/host_context.h"

namespace qx {

QColor toQColor(uint32_t oleColour, const QPalette& palette);
// A 24-bit picture of the host, rows from the top, blue-green-red; a null
// picture is a null pixmap.
QPixmap toQPixmap(const PicturePtr& picture);
// The widget's font with the host font's family and size.
QFont toQFont(const Font& font, QFont base);

}  // namespace qx
