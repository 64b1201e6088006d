#pragma once

#include <QString>
#include <QStringView>
#include <algorithm>
#include <array>
#include <concepts>

#include "platform/Wipe.h"

namespace db {

/// A UTF-16 literal as a template argument.
template <std::size_t N>
struct StatementText {
    consteval StatementText(const char16_t (&literal)[N]) { std::copy_n(literal, N, characters.begin()); }

    QStringView view() const { return QStringView(characters.data(), qsizetype(N) - 1); }

    std::array<char16_t, N> characters{};
};

/// The text of one statement, ready to run. Only a Statement makes one, so no other text reaches the
/// database. The text is overwritten when the last copy goes: a login's holds the password.
class Sql {
  public:
    Sql(const Sql&) = default;
    Sql(Sql&&) = default;
    Sql& operator=(const Sql&) = delete;
    Sql& operator=(Sql&&) = delete;
    ~Sql() { platform::wipe(&text_); }

    /// The statement with its values in single quotes, unescaped.
    const QString& text() const { return text_; }

    /// False when a value holds a single quote: such a statement fails and never changes its structure.
    bool isWellFormed() const { return isWellFormed_; }

    /// The statement as it is written in the code, without its values; safe to log.
    QStringView format() const { return format_; }

  private:
    template <StatementText Format>
    friend class Statement;
    Sql(QString text, QStringView format, bool isWellFormed)
        : text_(std::move(text)), format_(format), isWellFormed_(isWellFormed) {}

    QString text_;
    QStringView format_;
    bool isWellFormed_;
};

/// One statement of the system: `constexpr db::Statement<u"SELECT … WHERE GCode = '%s'"> kSelect;`. Calling
/// it with one text for every '%s' gives the Sql; another number of values does not compile, nor does a "%s"
/// outside single quotes.
template <StatementText Format>
class Statement {
    // These look at the characters themselves: making a QStringView is no constant expression for every set
    // of compiler options.
    static constexpr std::size_t kLength = Format.characters.size() - 1;
    static constexpr bool isPlace(std::size_t at) {
        return Format.characters[at] == u'%' && Format.characters[at + 1] == u's';
    }

  public:
    static constexpr int kValues = [] {
        int values = 0;
        for (std::size_t i = 0; i < kLength; ++i) values += isPlace(i);
        return values;
    }();

    static constexpr bool kEveryValueIsQuoted = [] {
        for (std::size_t i = 0; i < kLength; ++i) {
            if (!isPlace(i)) continue;
            if (i == 0 || Format.characters[i - 1] != u'\'' || Format.characters[i + 2] != u'\'')
                return false;
        }
        return true;
    }();
    static_assert(kEveryValueIsQuoted, "every %s of a statement stands in single quotes");

    /// Where the values go in the format; found once, because every use builds a text.
    static constexpr std::array<qsizetype, kValues> kPlaces = [] {
        std::array<qsizetype, kValues> places{};
        std::size_t found = 0;
        for (std::size_t i = 0; i < kLength; ++i) {
            if (isPlace(i)) places[found++] = qsizetype(i);
        }
        return places;
    }();

    static QStringView format() { return Format.view(); }

    /// The text with a "?" for each value, as SQLite prepares it.
    static QByteArray textForBinding() {
        return Format.view().toString().replace(QStringLiteral("'%s'"), QStringLiteral("?")).toUtf8();
    }

    template <std::convertible_to<QStringView>... Values>
    requires(sizeof...(Values) == kValues) Sql operator()(const Values&... values) const {
        return build(std::array<QStringView, kValues>{QStringView(values)...});
    }

    /// The same with the values in an array, for statements that carry a whole record.
    Sql operator()(const std::array<QStringView, kValues>& values) const requires(kValues > 0) {
        return build(values);
    }

  private:
    static Sql build(const std::array<QStringView, kValues>& values) {
        const QStringView format = Format.view();
        qsizetype length = format.size() - 2 * kValues;
        for (const QStringView value : values) length += value.size();
        QString text(length, Qt::Uninitialized);
        QChar* end = text.data();
        bool hasQuote = false;
        qsizetype from = 0;
        for (std::size_t i = 0; i < values.size(); ++i) {
            end = std::copy(format.begin() + from, format.begin() + kPlaces[i], end);
            for (const QChar character : values[i]) {
                hasQuote |= character == u'\'';
                *end++ = character;
            }
            from = kPlaces[i] + 2;
        }
        std::copy(format.begin() + from, format.end(), end);
        return Sql(std::move(text), format, !hasQuote);
    }
};

}  // namespace db
