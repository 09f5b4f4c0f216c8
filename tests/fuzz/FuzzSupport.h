// Shared by the fuzz targets: a scratch folder that lives as long as the process, and a way to put
// the input bytes into a file there. libFuzzer calls every target from one thread.
#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>
#include <QTemporaryDir>

#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace morvane::fuzz {

inline const QTemporaryDir& scratch() {
    // Never destroyed: libFuzzer may end the process from a signal handler.
    static const QTemporaryDir* dir = new QTemporaryDir;
    if (!dir->isValid()) std::abort();
    return *dir;
}

inline QString writeInput(const QString& name, const std::uint8_t* data, std::size_t size) {
    const QString path = scratch().filePath(name);
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate)) std::abort();
    if (size > 0 && file.write(reinterpret_cast<const char*>(data), static_cast<qint64>(size)) !=
                        static_cast<qint64>(size))
        std::abort();
    return path;
}

// A broken invariant is a finding like a crash: libFuzzer saves the input that led to it.
inline void require(bool condition) {
    if (!condition) std::abort();
}

} // namespace morvane::fuzz
