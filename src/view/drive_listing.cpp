#include "view/drive_listing.h"

#include "disc/catalogue.h"
#include "disc/image_files.h"
#include "disc/module1.h"
#include "exchange/audit.h"
#include "platform/files.h"
#include "platform/growing_file.h"
#include "platform/host.h"
#include "platform/saving.h"
#include "platform/text.h"
#include "view/catalogue_pages.h"
#include "view/sink.h"

#include <algorithm>
#include <optional>
#include <string>
#include <system_error>

namespace quoravel {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t kPiece = 65536; // bytes that go to the file at once

/// A name beside `file` that nothing has.
fs::path NameBeside(const fs::path& file) {
    std::error_code error;
    for (int i = 1;; ++i) {
        fs::path beside = file;
        beside += i == 1 ? ".part" : ".part" + std::to_string(i);
        if (!fs::exists(fs::symlink_status(beside, error)))
            return beside;
    }
}

/// The text file of a listing. The first error is kept, and nothing is written after it.
class ExLogStream : public ViewSink {
  public:
    explicit ExLogStream(const fs::path& file) : file_(file), growing_(NameBeside(file)) {
        error_ = out_.Create(growing_);
    }

    ExLogStream(const ExLogStream&) = delete;
    ExLogStream& operator=(const ExLogStream&) = delete;

    /// What has been written is kept when the program ends in the middle.
    ~ExLogStream() override {
        if (!finished_)
            static_cast<void>(Finish());
    }

    void ShowData(std::string_view latin1) override {
        for (std::size_t line = 0; line < latin1.size();) {
            const std::size_t end = std::min(latin1.find('\r', line), latin1.size());
            AddLatin1(latin1.substr(line, end - line));
            if (end < latin1.size())
                text_ += "\r\n";
            line = end + 1;
        }
        if (text_.size() >= kPiece)
            WriteText();
    }

    void ShowHostText(std::string_view utf8) {
        text_ += utf8;
        if (text_.size() >= kPiece)
            WriteText();
    }

    [[nodiscard]] bool IsWritable() const { return !error_; }

    /// Gives the file its name.
    [[nodiscard]] std::optional<FileError> Finish() {
        finished_ = true;
        WriteText();
        if (!error_)
            error_ = out_.Finish();
        std::error_code ignored;
        if (error_) {
            fs::remove(growing_, ignored);
        } else if ((error_ = TakePlaceOf(file_, growing_))) { // all of it is there, and stays
            error_->reason += "; it is kept as " + FileName(growing_);
        }
        return error_;
    }

  private:
    void AddLatin1(std::string_view text) {
        if (std::ranges::all_of(text, [](char c) { return static_cast<signed char>(c) >= 0; }))
            text_ += text; // nearly always
        else
            text_ += Latin1ToUtf8(text);
    }

    void WriteText() {
        if (!error_)
            error_ = out_.WriteAt(written_, AsBytes(text_));
        written_ += text_.size();
        text_.clear();
    }

    fs::path file_;
    fs::path growing_;
    GrowingFile out_;
    std::string text_; ///< not yet in the file
    std::uint64_t written_ = 0;
    std::optional<FileError> error_;
    bool finished_ = false;
};

/// Nobody gets in between the lines of one disc.
void WithoutPause() {
}

void ShowEX(int drive, ExLogStream& log) {
    Module1::cur_drive = drive;
    ListHeader(GetStartSectorOfDrive(drive), log);
    ListEX(log, WithoutPause);
}

void ListImage(const fs::path& image, ExLogStream& log) {
    log.ShowHostText("\r\n" + Utf8Of(image) + "\r\n\r\n");
    const std::string_view path = image.native();
    const auto form = FormOfName(path.substr(path.rfind('/') + 1));
    const bool interleaved = form == ImageForm::Interleaved;
    if (const auto error = interleaved ? LoadDisc_DSD(image) : LoadDisc_SSD(image)) {
        log.ShowHostText("Cannot read: " + error->reason + "\r\n");
        return;
    }
    ShowEX(0, log);
    if (!interleaved)
        return;
    log.ShowData("\r");
    ShowEX(1, log);
}

void FindImages(ImageAudit& audit, const fs::path& folder, ListingProgress& progress) {
    audit.found = [&](int count) {
        progress.SetImages(count == 1 ? "Found 1 Image"
                                      : "Found " + std::to_string(count) + " Images");
    };
    AuditDirectories(audit, folder);
}

} // namespace

void ListImagesBelow(const fs::path& folder, const fs::path& log, ListingProgress& progress) {
    ExLogStream stream(log);
    ImageAudit audit;
    if (stream.IsWritable())
        FindImages(audit, folder, progress);
    const std::size_t ImageCount = audit.ImageList.size();
    for (std::size_t i = 0; i < ImageCount && !Module1::gCancel && stream.IsWritable(); ++i) {
        ListImage(audit.ImageList[i], stream);
        progress.SetProgress(
            static_cast<int>(static_cast<double>(i + 1) / static_cast<double>(ImageCount) * 100));
        Yield();
    }
    if (const auto error = stream.Finish())
        host().MsgBox("Cannot save " + FileName(log) + ": " + error->reason);
}

} // namespace quoravel
