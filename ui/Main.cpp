#include "ui/Startup.h"

int main(int argc, char** argv) {
    return qf::ui::RunQuillfeed(argc, argv);
}
