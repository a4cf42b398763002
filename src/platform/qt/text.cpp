#include "platform/qt/text.h"

#include <QFile>

namespace quoravel {

namespace {

constexpr char kNoCharacter = 26; // SUBSTITUTE

} // namespace

QString ScreenText(std::string_view latin1) {
    return QString::fromLatin1(latin1.data(), static_cast<qsizetype>(latin1.size()));
}

std::string BytesOfScreenText(const QString& text) {
    std::string bytes;
    for (const uint character : text.toUcs4())
        bytes += character <= 0xFF ? static_cast<char>(character) : kNoCharacter;
    return bytes;
}

QString HostText(std::string_view utf8) {
    return QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size()));
}

std::string Utf8OfHostText(const QString& text) {
    return text.toStdString();
}

QString PathText(const std::filesystem::path& path) {
    return QFile::decodeName(path.c_str());
}

std::filesystem::path PathOfText(const QString& text) {
    return QFile::encodeName(text).toStdString();
}

std::filesystem::path PathOfUrl(const QUrl& url) {
    return QByteArray::fromPercentEncoding(url.path(QUrl::FullyEncoded).toLatin1()).toStdString();
}

} // namespace quoravel
