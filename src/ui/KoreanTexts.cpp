#include "ui/KoreanTexts.h"

#include <QCoreApplication>
#include <QHash>
#include <QLocale>
#include <QTranslator>
#include <string_view>

namespace ui {
namespace {

struct Text {
    std::string_view source;
    const char16_t* korean;
};

/// The library's texts that can be seen here. A mark for the key, as in "&Save", goes with the English word.
constexpr Text kTexts[] = {
    // Standard buttons.
    {"OK", u"확인"},
    {"&OK", u"확인"},
    {"Cancel", u"취소"},
    {"&Cancel", u"취소"},
    {"Save", u"저장"},
    {"&Save", u"저장"},
    {"Save All", u"모두 저장"},
    {"Open", u"열기"},
    {"&Open", u"열기"},
    {"Yes", u"예"},
    {"&Yes", u"예"},
    {"Yes to &All", u"모두 예"},
    {"No", u"아니오"},
    {"&No", u"아니오"},
    {"N&o to All", u"모두 아니오"},
    {"Close", u"닫기"},
    {"&Close", u"닫기"},
    {"Close without Saving", u"저장하지 않고 닫기"},
    {"Discard", u"버리기"},
    {"Don't Save", u"저장하지 않음"},
    {"Abort", u"중단"},
    {"Retry", u"다시 시도"},
    {"Ignore", u"무시"},
    {"Apply", u"적용"},
    {"Reset", u"처음대로"},
    {"Restore Defaults", u"기본값으로"},
    {"Help", u"도움말"},
    {"Show Details...", u"자세히..."},
    {"Hide Details...", u"간단히..."},
    // The file dialog.
    {"Look in:", u"위치:"},
    {"Back", u"뒤로"},
    {"Go back", u"뒤로 가기"},
    {"Forward", u"앞으로"},
    {"Go forward", u"앞으로 가기"},
    {"Parent Directory", u"상위 폴더"},
    {"Go to the parent directory", u"상위 폴더로 가기"},
    {"Create New Folder", u"새 폴더"},
    {"Create a New Folder", u"새 폴더 만들기"},
    {"List View", u"목록"},
    {"Change to list view mode", u"목록으로 보기"},
    {"Detail View", u"자세히"},
    {"Change to detail view mode", u"자세히 보기"},
    {"Sidebar", u"바로가기"},
    {"List of places and bookmarks", u"자주 쓰는 폴더"},
    {"Files", u"파일"},
    {"Files of type:", u"파일 형식:"},
    {"File &name:", u"파일 이름:"},
    {"File name:", u"파일 이름:"},
    {"Directory:", u"폴더:"},
    {"&Choose", u"선택"},
    {"All Files (*)", u"모든 파일 (*)"},
    {"Find Directory", u"폴더 찾기"},
    {"Save As", u"다른 이름으로 저장"},
    {"Recent Places", u"최근 위치"},
    {"My Computer", u"컴퓨터"},
    {"Computer", u"컴퓨터"},
    {"File", u"파일"},
    {"Drive", u"드라이브"},
    {"Folder", u"폴더"},
    {"File Folder", u"폴더"},
    {"Shortcut", u"바로가기"},
    {"Alias", u"바로가기"},
    {"Unknown", u"알 수 없음"},
    {"New Folder", u"새 폴더"},
    {"&New Folder", u"새 폴더"},
    {"&Rename", u"이름 바꾸기"},
    {"Rename", u"이름 바꾸기"},
    {"&Delete", u"지우기"},
    {"Delete", u"지우기"},
    {"Remove", u"없애기"},
    {"Show &hidden files", u"숨은 파일 보기"},
    {"Show ", u"보기 "},
    {"Name", u"이름"},
    {"Size", u"크기"},
    {"Type", u"종류"},
    {"Kind", u"종류"},
    {"Date Modified", u"바뀐 날짜"},
    {"%1 bytes", u"%1바이트"},
    {"%1 byte(s)", u"%1바이트"},
    {"%1\nDirectory not found.\nPlease verify the correct directory name was given.",
     u"%1\n폴더가 없습니다.\n폴더 이름을 확인하십시오."},
    {"%1\nFile not found.\nPlease verify the correct file name was given.",
     u"%1\n파일이 없습니다.\n파일 이름을 확인하십시오."},
    {"%1 already exists.\nDo you want to replace it?", u"%1이(가) 이미 있습니다.\n바꿀까요?"},
    {"'%1' is write protected.\nDo you want to delete it anyway?",
     u"'%1'은(는) 쓰기가 금지되어 있습니다.\n그래도 지울까요?"},
    {"Are you sure you want to delete '%1'?", u"'%1'을(를) 지울까요?"},
    {"Could not delete directory.", u"폴더를 지우지 못했습니다."},
    {"Invalid filename", u"쓸 수 없는 이름"},
    {"<b>The name \"%1\" cannot be used.</b><p>Try using another name, with fewer characters or no "
     "punctuation marks.",
     u"<b>\"%1\"은(는) 쓸 수 없는 이름입니다.</b><p>더 짧거나 기호가 없는 이름으로 하십시오."},
    // Edit lines and spin boxes.
    {"&Undo", u"실행 취소"},
    {"&Redo", u"다시 실행"},
    {"Cu&t", u"잘라내기"},
    {"&Copy", u"복사"},
    {"Copy &Link Location", u"주소 복사"},
    {"&Paste", u"붙여넣기"},
    {"Select All", u"모두 선택"},
    {"&Select All", u"모두 선택"},
    {"&Step up", u"올리기"},
    {"Step &down", u"내리기"},
    {"Clear", u"지우기"},
    // Scroll bars.
    {"Scroll here", u"여기로"},
    {"Left edge", u"왼쪽 끝"},
    {"Right edge", u"오른쪽 끝"},
    {"Top", u"맨 위"},
    {"Bottom", u"맨 아래"},
    {"Page left", u"한 쪽 왼쪽으로"},
    {"Page right", u"한 쪽 오른쪽으로"},
    {"Page up", u"한 쪽 위로"},
    {"Page down", u"한 쪽 아래로"},
    {"Scroll left", u"왼쪽으로"},
    {"Scroll right", u"오른쪽으로"},
    {"Scroll up", u"위로"},
    {"Scroll down", u"아래로"},
};

/// The same word means the same in every part of the library that shows it here.
class KoreanTexts : public QTranslator {
  public:
    using QTranslator::QTranslator;

    QString translate(const char*, const char* source, const char*, int) const override {
        static const QHash<QByteArrayView, const char16_t*> texts = [] {
            QHash<QByteArrayView, const char16_t*> result;
            for (const Text& text : kTexts)
                result.insert(QByteArrayView(text.source.data(), qsizetype(text.source.size())), text.korean);
            return result;
        }();
        const char16_t* korean = texts.value(QByteArrayView(source), nullptr);
        // Nothing leaves the text as it is.
        return korean != nullptr ? QString::fromUtf16(korean) : QString();
    }

    bool isEmpty() const override { return false; }
};

}  // namespace

void speakKorean() {
    QLocale::setDefault(QLocale(QLocale::Korean, QLocale::SouthKorea));
    // The desktop's own dialogs would speak its language.
    QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    QCoreApplication::installTranslator(new KoreanTexts(QCoreApplication::instance()));
}

}  // namespace ui
