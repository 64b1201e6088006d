#include "platform/Lines.h"

#include <dlfcn.h>

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

Loaded load() {
    const QString path = QCoreApplication::applicationDirPath() + u"/" ROVANA_MODULES "/lines.so"_s;
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
