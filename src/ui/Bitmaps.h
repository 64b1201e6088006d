#pragma once

#include <QIcon>
#include <QRectF>
#include <QSize>

class QPainter;

namespace ui {

/// The colour of a caption, chosen so that it stands out from the button's face.
enum class CaptionColour { Dark, Light };

/// The two pictures of a button by their resource numbers.
struct ButtonBitmaps {
    int normal;
    int pressed;
    CaptionColour caption = CaptionColour::Dark;
};

namespace bitmaps {

inline constexpr ButtonBitmaps kPassword{158, 159};
inline constexpr ButtonBitmaps kSalesWork{160, 161};
inline constexpr ButtonBitmaps kCollectionWork{162, 163};
inline constexpr ButtonBitmaps kContainerWork{164, 165};
inline constexpr ButtonBitmaps kTotals{166, 167};
inline constexpr ButtonBitmaps kBalance{168, 169};
inline constexpr ButtonBitmaps kPreviousTransaction{170, 171};
inline constexpr ButtonBitmaps kSimplePayment{444, 443};
inline constexpr ButtonBitmaps kConfirm{174, 175, CaptionColour::Light};
inline constexpr ButtonBitmaps kCancel{208, 198, CaptionColour::Light};
inline constexpr ButtonBitmaps kBlank{178, 178};
inline constexpr ButtonBitmaps kErase{211, 210};
inline constexpr ButtonBitmaps kEnterAgain{404, 403};
inline constexpr ButtonBitmaps kDigit{500, 501};
inline constexpr ButtonBitmaps kConsonant{502, 503};
inline constexpr ButtonBitmaps kOtherConsonant{520, 521};
inline constexpr ButtonBitmaps kAdd{504, 505, CaptionColour::Light};
inline constexpr ButtonBitmaps kDelete{506, 507, CaptionColour::Light};
inline constexpr ButtonBitmaps kAmount{508, 509};
inline constexpr ButtonBitmaps kSearch{510, 511, CaptionColour::Light};
inline constexpr ButtonBitmaps kListAll{275, 274, CaptionColour::Light};
inline constexpr ButtonBitmaps kPay{512, 513, CaptionColour::Light};
inline constexpr ButtonBitmaps kDocument{514, 515};
inline constexpr ButtonBitmaps kSearchCode{528, 529, CaptionColour::Light};
inline constexpr ButtonBitmaps kWideAmount{530, 531};
inline constexpr ButtonBitmaps kSettle{532, 533, CaptionColour::Light};
inline constexpr ButtonBitmaps kHalfDocument{540, 541};
inline constexpr ButtonBitmaps kKeySpecial{522, 523};
inline constexpr ButtonBitmaps kNarrow{550, 551};
inline constexpr ButtonBitmaps kSmallConsonant{552, 553};

inline constexpr int kApplicationIcon = 128;
inline constexpr int kLogo = 154;
inline constexpr int kFooter = 155;
inline constexpr int kImportHeading = 436;
inline constexpr int kSlipsHeading = 362;
inline constexpr int kAskForCard = 360;

}  // namespace bitmaps

/// Size of a picture in pixels at scale 1; empty for a number without a picture.
QSize bitmapSize(int number);

/// Draws the picture to fill `area`, and nothing for a number without a picture.
void drawBitmap(QPainter* painter, int number, const QRectF& area);

/// Draws the picture in its own size at the painter's origin, and keeps its pixels for the next time.
void drawKeptBitmap(QPainter* painter, int number);

/// The picture as an icon, drawn when the desktop asks for it and in the size that it asks for.
QIcon icon(int number);

}  // namespace ui
