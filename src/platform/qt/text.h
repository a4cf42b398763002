#pragma once

#include <QString>
#include <QUrl>

#include <filesystem>
#include <string>
#include <string_view>

namespace quoravel {

// The border between the program's texts and Qt's. No other place crosses it.

/// Bytes of a disc or of the wire, each as its Latin-1 character.
[[nodiscard]] QString ScreenText(std::string_view latin1);

/// The way back: characters beyond Latin-1, which no disc can hold, become control code 26, which
/// every check of names and titles refuses.
[[nodiscard]] std::string BytesOfScreenText(const QString& text);

/// Texts of boxes and host file names.
[[nodiscard]] QString HostText(std::string_view utf8);
[[nodiscard]] std::string Utf8OfHostText(const QString& text);

/// File references, as dialogs give and take them.
[[nodiscard]] QString PathText(const std::filesystem::path& path);
[[nodiscard]] std::filesystem::path PathOfText(const QString& text);

/// The file that a local address names, to the byte: names that are not UTF-8 come through.
[[nodiscard]] std::filesystem::path PathOfUrl(const QUrl& url);

} // namespace quoravel
