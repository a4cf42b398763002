#pragma once

#include <filesystem>
#include <string_view>

namespace quoravel {

/// Where a listing shows how far it is.
class ListingProgress {
  public:
    ListingProgress() = default;
    ListingProgress(const ListingProgress&) = delete;
    ListingProgress& operator=(const ListingProgress&) = delete;
    virtual ~ListingProgress() = default;

    virtual void SetImages(std::string_view text) = 0; ///< "Found 2 Images"
    virtual void SetProgress(int percent) = 0;
};

/// Writes the *EX listing of every disc image below `folder` to the text file `log`, in UTF-8 with
/// CR LF line ends. The images go through DiscImg, one after the other, and cur_drive moves. The
/// file grows under a name beside `log` and takes its own at the end, which Module1::gCancel brings
/// about early. An image that cannot be read is told in the file, a file that cannot be written in
/// a box. Pumps events.
void ListImagesBelow(const std::filesystem::path& folder, const std::filesystem::path& log,
                     ListingProgress& progress);

} // namespace quoravel
