#pragma once

#include "render/PageContext.h"

namespace qf {
class ChannelStore;
}

namespace qf::ui {

// What the page builders need from the store: the data folder of its storage volume.
PageContext PageContextFor(const ChannelStore& store);

} // namespace qf::ui
