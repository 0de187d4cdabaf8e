#pragma once
// The border between the logic's UTF-8 texts and Qt's: nothing else in this folder converts.

#include <QString>
#include <string>
#include <string_view>

namespace wendel {

inline QString qtText(std::string_view utf8) {
    return QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size()));
}

// For labels and boxes: the logic breaks lines with CR LF.
inline QString qtZeilen(std::string_view utf8) {
    QString text = qtText(utf8);
    text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    return text;
}

inline std::string logikText(const QString& text) { return text.toStdString(); }

}  // namespace wendel
