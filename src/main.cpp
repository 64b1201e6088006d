#include "Program.h"
#include "platform/OwnerOnly.h"

int main(int argc, char** argv) {
    platform::keepToOwner();
    return runProgram(argc, argv);
}
