#include "ui/PageContexts.h"

#include "model/ChannelStore.h"
#include "model/DataFolder.h"

namespace qf::ui {

PageContext PageContextFor(const ChannelStore& store) {
    PageContext context;
    if (auto folder = DataFolderOfVolume(store.settings().storageVolume().view())) {
        context.dataFolder = std::move(*folder);
    }
    return context;
}

} // namespace qf::ui
