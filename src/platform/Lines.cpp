#include "platform/Lines.h"

#include <dlfcn.h>
#include <link.h>

#include <QCoreApplication>
#include <QFile>

#include "platform/Trace.h"

namespace platform {
namespace {

using namespace Qt::Literals::StringLiterals;

struct Loaded {
    const LinesModule* module = nullptr;
    QString fault;
};

/// False when the end of a library is missing, as a full disk or a loss of power leaves it: loading it would
/// end the program. What ends a library is the table of its sections.
bool isWhole(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) return true;  // The loader says why not.
    ElfW(Ehdr) header{};
    return file.read(reinterpret_cast<char*>(&header), sizeof header) == sizeof header &&
           header.e_shoff + quint64(header.e_shnum) * header.e_shentsize <= quint64(file.size());
}

Loaded load() {
    const QString path = QCoreApplication::applicationDirPath() + u"/" ROVANA_MODULES "/lines.so"_s;
    if (!isWhole(path)) return {nullptr, path + u" is not whole"_s};
    void* const library = ::dlopen(QFile::encodeName(path).constData(), RTLD_NOW | RTLD_NODELETE);
    if (library == nullptr) return {nullptr, QString::fromLocal8Bit(::dlerror())};
    const auto lines = reinterpret_cast<const LinesModule* (*)()>(::dlsym(library, "rovanaLines"));
    if (lines == nullptr || qstrcmp(lines()->version, ROVANA_VERSION) != 0)
        return {nullptr, path + u" is another version's"_s};
    return {lines(), {}};
}

const Loaded& loaded() {
    static const Loaded result = [] {
        Loaded first = load();
        if (!first.fault.isEmpty())
            trace(u"no network and no serial lines, Rovana has to be installed again: "_s + first.fault);
        return first;
    }();
    return result;
}

}  // namespace

QString loadLines() {
    return loaded().fault;
}

std::unique_ptr<Connection> makeConnection(qint64 readBuffer) {
    return loaded().module != nullptr ? loaded().module->makeConnection(readBuffer) : nullptr;
}

std::unique_ptr<SerialLine> makeSerialLine(qint64 readBuffer) {
    return loaded().module != nullptr ? loaded().module->makeSerialLine(readBuffer) : nullptr;
}

}  // namespace platform
