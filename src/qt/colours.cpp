#include "qt/colours.h"

#include <QImage>

#include "qt/qt_text.h"

namespace qx {

namespace {

constexpr uint32_t SystemColourBit = 0x80000000;

// The system colour indexes of the host and the palette roles that hold them
// here; an index the palette has no role for takes the window's colour.
QColor systemColour(uint32_t index, const QPalette& palette) {
    switch (index) {
        case 0x05:  // window background
            return palette.color(QPalette::Base);
        case 0x08:  // window text
            return palette.color(QPalette::Text);
        case 0x0D:  // highlight
            return palette.color(QPalette::Highlight);
        case 0x0E:  // highlighted text
            return palette.color(QPalette::HighlightedText);
        case 0x0F:  // button face
            return palette.color(QPalette::Button);
        case 0x10:  // button shadow
            return palette.color(QPalette::Mid);
        case 0x11:  // grey text
            return palette.color(QPalette::Disabled, QPalette::Text);
        case 0x12:  // button text
            return palette.color(QPalette::ButtonText);
        case 0x17:  // tool tip text
            return palette.color(QPalette::ToolTipText);
        case 0x18:  // tool tip background
            return palette.color(QPalette::ToolTipBase);
        default:
            return palette.color(QPalette::Window);
    }
}

}  // namespace

QColor toQColor(uint32_t oleColour, const QPalette& palette) {
    if (oleColour & SystemColourBit) return systemColour(oleColour & 0xFF, palette);
    return QColor(static_cast<int>(oleColour & 0xFF), static_cast<int>((oleColour >> 8) & 0xFF),
                  static_cast<int>((oleColour >> 16) & 0xFF));
}

QPixmap toQPixmap(const PicturePtr& picture) {
    if (!picture || picture->Width <= 0 || picture->Height <= 0) return QPixmap();
    const qsizetype stride = static_cast<qsizetype>(picture->Width) * 3;
    if (picture->Pixels.size() < static_cast<size_t>(stride * picture->Height)) return QPixmap();
    // The host keeps blue first; the image is copied so it owns its pixels.
    const QImage view(picture->Pixels.data(), picture->Width, picture->Height, stride, QImage::Format_BGR888);
    return QPixmap::fromImage(view.copy());
}

QFont toQFont(const Font& font, QFont base) {
    base.setFamily(toQString(font.Name));
    base.setPointSizeF(font.Size);
    return base;
}

}  // namespace qx
