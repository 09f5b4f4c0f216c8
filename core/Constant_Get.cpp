#include "Constant_Get.h"

#include "Encrypt_Data.h"
#include "Encrypt_Mod.h"
#include "mMain.h"

#include <cstdlib>

namespace morvane {

// Generated at build time from data/constants.txt.
extern const char ConstantBlock_Head[];
extern const char ConstantBlock_Tail[];

QString Constant_Block() {
    return QString::fromLatin1(ConstantBlock_Head) + QString::fromLatin1(ConstantBlock_Tail);
}

QString Constant_Find(const QString& enciphered, const QString& key) {
    // No cache: the block is read a dozen times at start and never again.
    return Constant_Lookup(Line_Decipher(enciphered), key);
}

QString Constant_Get(const QString& key) {
    const QString value = Constant_Find(Constant_Block(), key);
    if (!value.isEmpty()) return value;
    Show_Message(key + QStringLiteral(" not found!"), MB_OK | MB_ICONCRITICAL, QString());
    std::exit(EXIT_FAILURE);
}

} // namespace morvane
