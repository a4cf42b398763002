#include "disc/file_commands.h"

#include "disc/catalogue.h"
#include "disc/entries.h"
#include "disc/free_space.h"
#include "disc/module1.h"
#include "platform/host.h"
#include "platform/text.h"

#include <algorithm>

namespace quoravel {

namespace {

constexpr std::size_t kAddressDigits = 6;
constexpr unsigned kLock = 128;
constexpr std::string_view kForbidden = " -:*#&@^"; // "." and "$" may stand in a name

bool HasAddressLength(std::string_view text) {
    return !text.empty() && text.size() <= kAddressDigits;
}

bool IsHexDigit(char c) {
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'F');
}

std::string PaddedAddress(std::string_view text) {
    return UpperCase(std::string(kAddressDigits - text.size(), '0').append(text));
}

/// The entry of that name on cur_drive.
std::optional<int> FindEntry(std::string_view name) {
    const int pos = GetPos(Module1::cur_drive, name);
    return pos < 0 ? std::nullopt : std::optional(GetDirOffset(Module1::cur_drive, pos));
}

bool IsLocked(int entry) {
    return ByteAt(entry + kDirectoryByte) >= kLock;
}

void SetLock(std::string_view name, unsigned lock) {
    const auto entry = FindEntry(name);
    if (!entry)
        return;
    const int directory = *entry + kDirectoryByte;
    StoreByte(directory, (ByteAt(directory) & ~kLock) | lock);
    UpdateSequenceNumber(Module1::cur_drive);
}

/// Tells a refusal; true, as the commands answer it.
bool Refuse(std::string_view text) {
    host().MsgBox(Latin1ToUtf8(text));
    return true;
}

/// Closes the gap in the catalogue that holds file `pos`. Meant: entries move up to the last slot,
/// however many the count says there are.
void RemoveEntry(int drive, int pos) {
    int base = GetStartSectorOfDrive(drive);
    const int in_first = FilesInCatalogue(base);
    if (pos >= in_first) {
        pos -= in_first;
        base += kSecondCatalogue;
    }
    for (int slot = pos; slot < kSlots - 1; ++slot)
        CopyEntry(SlotOffset(base, slot + 1), SlotOffset(base, slot));
    ClearEntry(SlotOffset(base, kSlots - 1));
    AddToCount(base, -1);
}

/// What a typed name becomes before it is looked at.
std::string NewName(std::string_view typed) {
    const std::string name(Trim(typed).substr(0, kLongestName));
    return name.find('.') == std::string::npos ? "$." + name.substr(0, kLongestBareName) : name;
}

bool FitsInName(char c) {
    const auto code = static_cast<unsigned char>(c);
    return code >= 32 && code <= 127 && kForbidden.find(c) == std::string_view::npos;
}

/// Why no file of cur_drive can get this name.
std::optional<std::string> RefusalOfName(const std::string& name) {
    if (FindEntry(name))
        return name + " Already Exists";
    if (!std::ranges::all_of(name, FitsInName))
        return "File " + name + " Contains Illegal Characters";
    if (name.size() < 2 || name[1] != '.')
        return "File " + name + " Does Not Contain A Valid Directory Name";
    return {};
}

} // namespace

std::optional<std::string_view> CheckAddresses(std::string& load, std::string& exec) {
    if (!HasAddressLength(load))
        return "Load Address Is Wrong Length";
    if (!HasAddressLength(exec))
        return "Exec Address Is Wrong Length";
    load = PaddedAddress(load);
    exec = PaddedAddress(exec);
    if (!std::ranges::all_of(load, IsHexDigit))
        return "Load Address Contains Illegal Characters";
    if (!std::ranges::all_of(exec, IsHexDigit))
        return "Exec Address Contains Illegal Characters";
    return {};
}

inline namespace Module2 {

void LockFile(std::string_view name) {
    SetLock(name, kLock);
}

void UnlockFile(std::string_view name) {
    SetLock(name, 0);
}

bool DeleteFile(std::string_view name, bool override_lock) {
    const int drive = Module1::cur_drive;
    const int pos = GetPos(drive, name);
    if (pos < 0)
        return false;
    if (!override_lock && IsLocked(GetDirOffset(drive, pos)))
        return Refuse("Cannot Delete Locked File : " + std::string(name));
    RemoveEntry(drive, pos);
    UpdateSequenceNumber(drive);
    GetFreeSpaceMap(drive);
    return false;
}

bool RenameFile(std::string_view new_name, std::string_view old_name, bool override_lock) {
    const auto entry = FindEntry(old_name);
    if (!entry)
        return true;
    if (!override_lock && IsLocked(*entry))
        return Refuse("Cannot Rename Locked File : " + std::string(old_name));
    const std::string name = NewName(new_name);
    if (const auto refusal = RefusalOfName(name))
        return Refuse(*refusal);
    const int directory = *entry + kDirectoryByte;
    StoreByte(directory, (ByteAt(directory) & kLock) | static_cast<unsigned char>(name.front()));
    StoreName(*entry, name);
    UpdateSequenceNumber(Module1::cur_drive);
    return false;
}

void SetFileAttr(std::string_view name, std::string_view load, std::string_view exec) {
    const auto entry = FindEntry(name);
    if (!entry)
        return;
    const int info = *entry + kInfoDistance;
    // Meant: the high bits of the load address follow the exec text too.
    const unsigned high = HighBits(exec);
    const unsigned others = ByteAt(info + kPackedByte) & ~(3U << kExecShift | 3U << kLoadShift);
    StoreLowDigits(info + kExecField, exec);
    StoreLowDigits(info + kLoadField, load);
    StoreByte(info + kPackedByte, others | high << kExecShift | high << kLoadShift);
    UpdateSequenceNumber(Module1::cur_drive);
}

} // namespace Module2

} // namespace quoravel
