#pragma once

namespace quoravel {

/// The right to use the cable, for one transfer, one bootstrap or one command. Whoever asks while
/// another holds it gets none, and the user a box that says so:
///
///     const LinkUse use;
///     if (!use)
///         return;
class LinkUse {
  public:
    LinkUse();
    ~LinkUse();
    LinkUse(const LinkUse&) = delete;
    LinkUse& operator=(const LinkUse&) = delete;

    [[nodiscard]] explicit operator bool() const { return mine_; }

  private:
    bool mine_;
};

} // namespace quoravel
