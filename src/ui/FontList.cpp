#include "ui/FontList.h"

#include <fontconfig/fontconfig.h>
#include <unistd.h>

#include <cstdlib>

namespace ui {
namespace {

/// In it stands every character of code page 949, the only ones that can be shown.
constexpr char kBold[] = "/usr/share/fonts/truetype/nanum/NanumGothicBold.ttf";

/// The families that screens and paper ask for. Of the machine's own rules it has those that show in their
/// letters, and the caches, so that both see the same fonts.
constexpr char kList[] = R"(<?xml version="1.0"?>
<fontconfig>
  <dir>/usr/share/fonts/truetype/nanum</dir>
  <selectfont><rejectfont><glob>*</glob></rejectfont><acceptfont>
    <glob>*/NanumGothic.ttf</glob><glob>*/NanumGothicBold.ttf</glob><glob>*/NanumGothicCoding.ttf</glob>
    <glob>*/NanumGothicCodingBold.ttf</glob>
  </acceptfont></selectfont>
  <cachedir>/var/cache/fontconfig</cachedir>
  <cachedir prefix="xdg">fontconfig</cachedir>
  <match target="scan">
    <test name="fullname" qual="any" compare="eq"><string>NanumGothicBold</string></test>
    <edit name="weight" mode="assign"><const>bold</const></edit>
  </match>
  <match target="pattern">
    <edit name="hintstyle" mode="append"><const>hintslight</const></edit>
    <edit name="antialias" mode="append"><bool>true</bool></edit>
    <edit name="lcdfilter" mode="append"><const>lcddefault</const></edit>
  </match>
  <match target="font">
    <test name="family"><string>NanumGothicCoding</string></test>
    <edit name="spacing" mode="assign"><const>dual</const></edit>
    <edit name="globaladvance" mode="assign"><bool>false</bool></edit>
  </match>
</fontconfig>
)";

}  // namespace

void useOwnFontList() {
    if (std::getenv("FONTCONFIG_FILE") != nullptr || ::access(kBold, R_OK) != 0) return;
    FcConfig* list = FcConfigCreate();
    if (list == nullptr) return;
    if (FcConfigParseAndLoadFromMemory(list, reinterpret_cast<const FcChar8*>(kList), FcTrue) == FcTrue &&
        FcConfigBuildFonts(list) == FcTrue) {
        FcConfigSetCurrent(list);
    }
    // The one in use is counted by fontconfig itself.
    FcConfigDestroy(list);
}

}  // namespace ui
