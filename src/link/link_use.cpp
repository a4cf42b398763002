#include "link/link_use.h"

#include "platform/host.h"

namespace quoravel {

namespace {

bool in_use = false;

} // namespace

LinkUse::LinkUse() : mine_(!in_use) {
    in_use = true;
    if (!mine_)
        host().MsgBox("A transfer is in progress");
}

LinkUse::~LinkUse() {
    if (mine_)
        in_use = false;
}

} // namespace quoravel
