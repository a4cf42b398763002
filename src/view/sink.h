#pragma once

#include <string_view>

namespace quoravel {

/// Takes the text of a view piece by piece, as the renderers write it: bytes of Latin-1, lines
/// ended by CR (13). The view window puts it on screen; tests and the bulk listing collect it. A
/// window that has been closed throws from here, which ends the renderer at its next step.
class ViewSink {
  public:
    ViewSink() = default;
    ViewSink(const ViewSink&) = delete;
    ViewSink& operator=(const ViewSink&) = delete;
    virtual ~ViewSink() = default;

    virtual void ShowData(std::string_view text) = 0;
};

} // namespace quoravel
