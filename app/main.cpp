#include "app/Application.h"

int main(int argc, char** argv) {
    return kadrona::app::Run(argc, argv);
}
