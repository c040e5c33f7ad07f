// A consumer in a process of its own: opens a device of the producer, says how that went, and holds it until its input ends.
//
//     producer_helper <producer> <interface> <device> <access mode>

#include <cstdio>
#include <cstdlib>

#include "consumer.h"

int main(int count, char** arguments) {
    if (count != 5) return 2;
    const kiv::test::EntryPoints gentl(arguments[1]);
    void *system = nullptr, *interface = nullptr, *device = nullptr;
    GenTL::GC_ERROR status = gentl.GCInitLib();
    if (status == GenTL::GC_ERR_SUCCESS) status = gentl.TLOpen(&system);
    if (status == GenTL::GC_ERR_SUCCESS) status = gentl.TLOpenInterface(system, arguments[2], &interface);
    if (status == GenTL::GC_ERR_SUCCESS) status = gentl.IFOpenDevice(interface, arguments[3], std::atoi(arguments[4]), &device);
    std::printf("%d\n", status);
    std::fflush(stdout);
    while (std::getchar() != EOF) {
    }
    return gentl.GCCloseLib() == GenTL::GC_ERR_SUCCESS ? 0 : 1;
}
