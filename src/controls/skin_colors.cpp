#include "controls/skin_colors.h"

namespace vornic {

QPalette skinPalette()
{
    QPalette palette(skin::face().bottom, skin::promptBottom());
    for (const auto role : { QPalette::Base, QPalette::AlternateBase, QPalette::ToolTipBase })
        palette.setColor(role, skin::recess());
    for (const auto role : { QPalette::Text,
                             QPalette::ButtonText,
                             QPalette::HighlightedText,
                             QPalette::BrightText,
                             QPalette::ToolTipText })
        palette.setColor(role, skin::value());
    palette.setColor(QPalette::WindowText, skin::label());
    palette.setColor(QPalette::PlaceholderText, skin::title());
    palette.setColor(QPalette::Highlight, skin::selection());
    palette.setColor(QPalette::Link, skin::focus());
    palette.setColor(QPalette::LinkVisited, skin::focus());
    for (const auto role :
         { QPalette::WindowText, QPalette::ButtonText, QPalette::PlaceholderText, QPalette::HighlightedText })
        palette.setColor(QPalette::Disabled, role, skin::disabledTitle());
    palette.setColor(QPalette::Disabled, QPalette::Text, skin::disabledValue());
    palette.setColor(QPalette::Disabled, QPalette::Highlight, skin::disabledFace().top);
    return palette;
}

} // namespace vornic
