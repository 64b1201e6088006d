#pragma once

#include <QString>
#include <QStringView>

namespace pilot {

/// Takes a line of a script apart from the left. The first error stays.
class LineReader {
  public:
    explicit LineReader(QStringView line) : rest_(line.trimmed()) {}

    const QString& error() const { return error_; }
    bool atEnd() const { return rest_.isEmpty(); }
    QStringView rest() const { return rest_; }
    QStringView nextWord() const { return rest_.first(blankFrom(0)); }

    /// The next word, or the text that stands there in quotes; "" in error.
    QString word();
    /// The rest of the line; one that begins with a quote is a quoted text and nothing else.
    QString text();

    void skip(qsizetype characters) { rest_ = rest_.sliced(characters).trimmed(); }
    void fail(const QString& error) {
        if (error_.isEmpty()) error_ = error;
    }

  private:
    qsizetype blankFrom(qsizetype start) const;
    QString missing(const QString& error);
    QString quotedText();

    QStringView rest_;
    QString error_;
};

}  // namespace pilot
