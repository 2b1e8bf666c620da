#include "ui/Resources.h"

#include <QtGlobal>

// The registration function that the resource compiler generates lives in the global namespace.
static void InitQuillfeedResources() {
    Q_INIT_RESOURCE(resources);
}

namespace qf::ui {

void InitResources() {
    InitQuillfeedResources();
}

} // namespace qf::ui
