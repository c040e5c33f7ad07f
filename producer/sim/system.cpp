#include "system.h"

#include <algorithm>

#include "device.h"
#include "flavour.h"
#include "interface.h"
#include "session.h"

namespace kivsim {

Info system_info(const Session& session, GenTL::TL_INFO_CMD command) {
    switch (command) {
        case GenTL::TL_INFO_ID:
            return Info::Text(flavour.system_id);
        case GenTL::TL_INFO_VENDOR:
            return Info::Text(producer_vendor);
        case GenTL::TL_INFO_MODEL:
            return Info::Text(flavour.model);
        case GenTL::TL_INFO_VERSION:
            return Info::Text(producer_version);
        case GenTL::TL_INFO_TLTYPE:
            return Info::Text(session.configuration.tl_type);
        case GenTL::TL_INFO_NAME:
            return Info::Text(session.module_name);
        case GenTL::TL_INFO_PATHNAME:
            return Info::Text(session.module_path);
        case GenTL::TL_INFO_DISPLAYNAME:
            return Info::Text(flavour.display_name);
        case GenTL::TL_INFO_CHAR_ENCODING:
            return Info::Int32(GenTL::TL_CHAR_ENCODING_UTF8);
        case GenTL::TL_INFO_GENTL_VER_MAJOR:
            return Info::Uint32(GenTLMajorVersion);
        case GenTL::TL_INFO_GENTL_VER_MINOR:
            return Info::Uint32(GenTLMinorVersion);
        default:
            fail_unknown_command("TLGetInfo", command);
    }
}

std::string interface_display_name(const InterfaceEntry& entry) { return "Simulated bus " + entry.id; }

Info interface_info(const Session& session, const InterfaceEntry& entry, GenTL::INTERFACE_INFO_CMD command) {
    switch (command) {
        case GenTL::INTERFACE_INFO_ID:
            return Info::Text(entry.id);
        case GenTL::INTERFACE_INFO_DISPLAYNAME:
            return Info::Text(interface_display_name(entry));
        case GenTL::INTERFACE_INFO_TLTYPE:
            return Info::Text(session.configuration.tl_type);
        default:
            fail_unknown_command("IFGetInfo", command);
    }
}

std::shared_ptr<System> open_system(Session& session) {
    if (session.system) fail(GenTL::GC_ERR_RESOURCE_IN_USE, "The system is open already");
    if (!session.configuration_error.empty()) fail(GenTL::GC_ERR_ERROR, session.configuration_error);
    session.system = std::make_shared<System>(session);
    session.handles.Add(session.system);
    return session.system;
}

System::System(Session& session) : Module(session, "TLPort", "System", {GenTL::EVENT_ERROR}) {
    ListFeatures();
    ListInterfaceFeatures();
    FinishFeatures();
}

std::string System::Text(GenTL::TL_INFO_CMD command) const { return system_info(session_, command).Content().c_str(); }

void System::ListFeatures() {
    const auto text = [this](GenTL::TL_INFO_CMD command) { return [this, command] { return Text(command); }; };
    features_.Category("SystemInformation");
    features_.Text("TLID", "Identifier of the producer", 64, text(GenTL::TL_INFO_ID));
    features_.Text("TLVendorName", "Vendor of the producer", 64, text(GenTL::TL_INFO_VENDOR));
    features_.Text("TLModelName", "Name of the producer", 64, text(GenTL::TL_INFO_MODEL));
    features_.Text("TLVersion", "Version of the producer", 64, text(GenTL::TL_INFO_VERSION));
    features_.Text("TLFileName", "File name of the producer", 256, text(GenTL::TL_INFO_NAME));
    features_.Text("TLDisplayName", "Name of the producer to show to people", 64, text(GenTL::TL_INFO_DISPLAYNAME));
    features_.Text("TLPath", "File name of the producer with its path", 4096, text(GenTL::TL_INFO_PATHNAME));
    features_.Enumeration("TLType", "Transport technology", transport_words(),
                          [this] { return transport_word_index(session_.configuration.tl_type); });
    features_.Integer("GenTLVersionMajor", "GenTL version", [] { return GenTLMajorVersion; });
    features_.Integer("GenTLVersionMinor", "GenTL version", [] { return GenTLMinorVersion; });
    features_.Integer("GenTLSFNCVersionMajor", "Version of the naming convention", [] { return 1; });
    features_.Integer("GenTLSFNCVersionMinor", "Version of the naming convention", [] { return 2; });
}

void System::ListInterfaceFeatures() {
    features_.Category("InterfaceEnumeration");
    features_.Command("InterfaceUpdateList", "Looks for interfaces", [this] { UpdateInterfaceList(); });
    features_.Integer(
        "InterfaceUpdateTimeout", "Longest time in ms for InterfaceUpdateList", [this] { return update_timeout_ms_; },
        [this](int64_t value) {
            if (value < 0) fail(GenTL::GC_ERR_INVALID_VALUE, "InterfaceUpdateTimeout cannot be negative");
            update_timeout_ms_ = value;
        });
    features_.Index(
        "InterfaceSelector", "Index in the list of interfaces", [this] { return selected_; },
        [this](int64_t value) { selected_ = value; }, [this] { return static_cast<int64_t>(published_.size()); });
    features_.SelectedBy("InterfaceSelector");
    const auto selected = [this]() -> const InterfaceEntry& {
        if (static_cast<size_t>(selected_) >= published_.size())
            fail(GenTL::GC_ERR_NOT_AVAILABLE, "The list of interfaces is empty");
        return Entry(published_[static_cast<size_t>(selected_)]);
    };
    features_.Text("InterfaceID", "Identifier of the interface", 256, [selected] { return selected().id; });
    features_.Text("InterfaceDisplayName", "Name of the interface to show to people", 256,
                   [selected] { return interface_display_name(selected()); });
    features_.SelectedBy({});
}

bool System::UpdateInterfaceList() {
    std::vector<std::string> now;
    for (const InterfaceEntry& entry : session_.configuration.interfaces) now.push_back(entry.id);
    if (now == published_) return false;
    published_ = std::move(now);
    selected_ = 0;
    return true;
}

const InterfaceEntry& System::Entry(std::string_view id) const {
    for (const InterfaceEntry& entry : session_.configuration.interfaces)
        if (entry.id == id) return entry;
    fail(GenTL::GC_ERR_INVALID_ID, "There is no interface \"" + std::string(id) + "\"");
}

Info System::InterfaceInfo(std::string_view id, GenTL::INTERFACE_INFO_CMD command) const {
    return interface_info(session_, Entry(id), command);
}

std::shared_ptr<Interface> System::OpenInterface(std::string_view id) {
    const InterfaceEntry& entry = Entry(id);
    if (open_.contains(entry.id)) fail(GenTL::GC_ERR_RESOURCE_IN_USE, "Interface " + entry.id + " is open already");
    auto interface = std::make_shared<Interface>(session_, *this, entry);
    session_.handles.Add(interface);
    open_.emplace(entry.id, interface);
    return interface;
}

void System::SendAction(uint32_t device_key, uint32_t group_key, uint32_t group_mask) {
    for (const auto& [id, interface] : open_) interface->SendAction(device_key, group_key, group_mask);
}

void System::Close() {
    while (!open_.empty()) {
        const auto interface = open_.begin()->second;
        interface->Close();
    }
    Retire();
    session_.system.reset();
}

PortIdentity System::Identity() {
    PortIdentity identity;
    identity.id = Text(GenTL::TL_INFO_ID);
    identity.vendor = producer_vendor;
    identity.model = Text(GenTL::TL_INFO_MODEL);
    identity.tl_type = session_.configuration.tl_type;
    identity.module = "TLSystem";
    identity.version = producer_version;
    identity.name = "TLPort";
    return identity;
}

}  // namespace kivsim
