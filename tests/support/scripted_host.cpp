#include "support/scripted_host.h"

#include <gtest/gtest.h>
#include <utility>

namespace quoravel {

namespace {

/// The next answer of `queue`, or a failed test and `otherwise`.
template<class T>
T NextAnswer(std::deque<T>& queue, T otherwise, std::string_view question) {
    if (queue.empty()) {
        ADD_FAILURE() << "nobody answers: " << question;
        return otherwise;
    }
    T answer = std::move(queue.front());
    queue.pop_front();
    return answer;
}

} // namespace

ScriptedHost::ScriptedHost() {
    InstallHost(this);
}

ScriptedHost::~ScriptedHost() {
    InstallHost(nullptr);
}

std::vector<std::string> ScriptedHost::TakeBoxTexts() {
    std::vector<std::string> texts;
    for (const Box& box : std::exchange(boxes, {}))
        texts.push_back(box.text);
    return texts;
}

void ScriptedHost::MsgBox(std::string_view text, std::string_view title) {
    boxes.push_back({std::string(text), std::string(title)});
    if (on_box)
        on_box(text);
}

bool ScriptedHost::AskYesNo(std::string_view text, std::string_view title) {
    questions.push_back({std::string(text), std::string(title)});
    return NextAnswer(yes_no, false, text);
}

void ScriptedHost::DoEvents(int milliseconds) {
    ++pumps;
    if (milliseconds > 0)
        now += std::chrono::milliseconds(milliseconds);
    if (on_pump)
        on_pump();
}

std::optional<std::filesystem::path> ScriptedHost::AskOpenFile(const FileType& filter) {
    filters.emplace_back(filter.Extensions);
    return NextAnswer(files, {}, "open dialog");
}

std::optional<std::filesystem::path> ScriptedHost::AskSaveFile(const FileType& filter,
                                                               std::string_view proposal) {
    filters.emplace_back(filter.Extensions);
    proposals.emplace_back(proposal);
    return NextAnswer(files, {}, "save dialog");
}

std::optional<std::filesystem::path> ScriptedHost::AskFolder() {
    return NextAnswer(folders, {}, "folder dialog");
}

void ScriptedHost::OpenLink(std::string_view url,
                            std::function<void(int, const std::string&)> done) {
    links.emplace_back(url);
    done(link_code, link_result);
}

} // namespace quoravel
