#include <CLProtocol/cl_port.h>
#include <GenICam/exceptions.h>
#include <grabber_library.h>
#include <gtest/gtest.h>
#include <kiv/platform/environment.h>

#include "gencp_driver.h"

using namespace CLProtocol;

namespace {

TEST(Ports, LibrariesAreKnownByTheirNames) {
    for (const char* name :
         {"clserabc.so", "libclserABC.so", "libCLSerX_1.so", "clserabc.dll", "clserabc_w64.dll", "CLSERABC.DLL"})
        EXPECT_TRUE(is_grabber_library_name(name)) << name;
    for (const char* name :
         {"", "clser.so", "clserab.so", "clserabcd.so", "clserabc", "clserabc.so.1", "clallserial.so", "xclserabc.so", ".so"})
        EXPECT_FALSE(is_grabber_library_name(name)) << name;
}

/// The variable until the end of the scope.
struct Templates {
    explicit Templates(const char* value) { kiv::platform::set_environment("KIV_CAMERA_LINK_TEMPLATES", value); }
    ~Templates() { kiv::platform::unset_environment("KIV_CAMERA_LINK_TEMPLATES"); }
};

std::vector<std::string> short_templates() {
    std::vector<std::string> ids;
    for (const CDeviceID& id : DriverDirectory::Find().Templates()) ids.push_back(id.GetShortDeviceID());
    return ids;
}

TEST(Drivers, TemplatesAreOfAllMakersOrThoseOfTheEnvironment) {
    using Ids = std::vector<std::string>;
    EXPECT_EQ(Ids{"GenCP"}, short_templates());
    {
        Templates listed("Maker#Family;;Other;A##B");
        EXPECT_EQ((Ids{"Maker#Family", "Other"}), short_templates());
    }
    Templates none(";");
    EXPECT_EQ(Ids{}, short_templates());
}

TEST(Drivers, AnIdNamesItsDriverOrFitsATemplate) {
    Templates listed("Maker#Family");
    const DriverDirectory drivers = DriverDirectory::Find();
    const CDeviceID full = drivers.Templates().front();
    EXPECT_NO_THROW(drivers.For(full));
    EXPECT_NO_THROW(drivers.For(CDeviceID::FromString("Maker#Family#Model")));
    EXPECT_THROW(drivers.For(CDeviceID::FromString("Maker#Famil")), GenICam::InvalidArgumentException);
    EXPECT_THROW(drivers.For(CDeviceID("/elsewhere", "libX.so", {"Maker", "Family"})), GenICam::InvalidArgumentException);
}

TEST(Ports, APortThatIsNotConnectedAnswersNothing) {
    const PortDirectory ports = PortDirectory::Find();
    const DriverDirectory drivers = DriverDirectory::Find();
    CCLPort port(ports, drivers, [] {});
    char byte = 0;
    EXPECT_THROW(port.Read(&byte, 0, 1), GenICam::LogicalErrorException);
    EXPECT_THROW(port.GetDeviceBauderate(), GenICam::LogicalErrorException);
    EXPECT_THROW(port.Connect("Nobody#Port", drivers.Templates().front()), GenICam::InvalidArgumentException);
}

}  // namespace
