#include "aravis_subject.h"

#include <arv.h>

#include <stdexcept>

#include "bench_memory.h"

// ---- a device of plain memory --------------------------------------------------------------------------------------------

struct BenchDevice {
    ArvDevice parent;
    kiv::bench::BenchMemory* memory;
};
struct BenchDeviceClass {
    ArvDeviceClass parent;
};

G_DEFINE_TYPE(BenchDevice, bench_device, ARV_TYPE_DEVICE)

namespace {

kiv::bench::BenchMemory& memory_of(ArvDevice* device) { return *reinterpret_cast<BenchDevice*>(device)->memory; }

gboolean read_memory(ArvDevice* device, guint64 address, guint32 size, void* buffer, GError**) {
    return memory_of(device).Read(address, buffer, size);
}

gboolean write_memory(ArvDevice* device, guint64 address, guint32 size, void* buffer, GError**) {
    return memory_of(device).Write(address, buffer, size);
}

void finalize(GObject* object) {
    delete reinterpret_cast<BenchDevice*>(object)->memory;  // made in bench_device_init: GObject knows no destructors
    G_OBJECT_CLASS(bench_device_parent_class)->finalize(object);
}

template <class Value>
Value checked(Value value, GError* error) {
    if (!error) return value;
    std::string message = error->message;
    g_error_free(error);
    throw std::runtime_error(message);
}

}  // namespace

static void bench_device_init(BenchDevice* self) { self->memory = std::make_unique<kiv::bench::BenchMemory>().release(); }

static void bench_device_class_init(BenchDeviceClass* self) {
    G_OBJECT_CLASS(self)->finalize = finalize;
    self->parent.read_memory = read_memory;
    self->parent.write_memory = write_memory;
}

// ---- the subject -----------------------------------------------------------------------------------------------------------

namespace kiv::bench {

namespace {

struct Unref {
    void operator()(gpointer object) const { g_object_unref(object); }
};
template <class Object>
using Ref = std::unique_ptr<Object, Unref>;

ArvGcInteger* aravis(AravisSubject::Integer node) { return reinterpret_cast<ArvGcInteger*>(node); }
ArvGcFloat* aravis(AravisSubject::Float node) { return reinterpret_cast<ArvGcFloat*>(node); }
ArvGcEnumeration* aravis(AravisSubject::Enumeration node) { return reinterpret_cast<ArvGcEnumeration*>(node); }
ArvGcBoolean* aravis(AravisSubject::Boolean node) { return reinterpret_cast<ArvGcBoolean*>(node); }
ArvGcString* aravis(AravisSubject::String node) { return reinterpret_cast<ArvGcString*>(node); }
ArvGcCommand* aravis(AravisSubject::Command node) { return reinterpret_cast<ArvGcCommand*>(node); }
ArvGcRegister* aravis(AravisSubject::Register node) { return reinterpret_cast<ArvGcRegister*>(node); }

}  // namespace

struct AravisSubject::Objects {
    Ref<ArvDevice> device{static_cast<ArvDevice*>(g_object_new(bench_device_get_type(), nullptr))};
    Ref<ArvGc> map;

    template <class Node>
    Node Find(const char* node) const {
        ArvGcNode* found = arv_gc_get_node(map.get(), node);
        if (!found) throw std::runtime_error(std::string("no node ") + node);
        return reinterpret_cast<Node>(found);
    }
};

AravisSubject::AravisSubject(const std::string& xml) : AravisSubject(xml, BenchMemory()) {}

AravisSubject::AravisSubject(const std::string& xml, const BenchMemory& memory) : objects_(std::make_unique<Objects>()) {
    memory_of(objects_->device.get()) = memory;
    objects_->map.reset(arv_gc_new(objects_->device.get(), xml.data(), xml.size()));
    if (!objects_->map) throw std::runtime_error("aravis refuses the description");
    arv_gc_set_register_cache_policy(objects_->map.get(), ARV_REGISTER_CACHE_POLICY_ENABLE);
}

AravisSubject::~AravisSubject() = default;

AravisSubject::Integer AravisSubject::FindInteger(const std::string& node) const { return objects_->Find<Integer>(node.c_str()); }
AravisSubject::Float AravisSubject::FindFloat(const std::string& node) const { return objects_->Find<Float>(node.c_str()); }
AravisSubject::Boolean AravisSubject::FindBoolean(const std::string& node) const { return objects_->Find<Boolean>(node.c_str()); }
AravisSubject::Enumeration AravisSubject::FindEnumeration(const std::string& node) const {
    return objects_->Find<Enumeration>(node.c_str());
}

int64_t AravisSubject::ReadByName(const char* integer) const { return Read(objects_->Find<Integer>(integer)); }
void AravisSubject::SetByName(const char* enumeration, const char* symbolic) const {
    Set(objects_->Find<Enumeration>(enumeration), symbolic);
}

AravisSubject::String AravisSubject::FindString(const std::string& node) const { return objects_->Find<String>(node.c_str()); }
AravisSubject::Command AravisSubject::FindCommand(const std::string& node) const { return objects_->Find<Command>(node.c_str()); }
AravisSubject::Register AravisSubject::FindRegister(const std::string& node) const {
    return objects_->Find<Register>(node.c_str());
}

int64_t AravisSubject::Read(Integer node) {
    GError* error = nullptr;
    const int64_t value = arv_gc_integer_get_value(aravis(node), &error);
    return checked(value, error);
}

double AravisSubject::Read(Float node) {
    GError* error = nullptr;
    const double value = arv_gc_float_get_value(aravis(node), &error);
    return checked(value, error);
}

int64_t AravisSubject::Read(Enumeration node) {
    GError* error = nullptr;
    const int64_t value = arv_gc_enumeration_get_int_value(aravis(node), &error);
    return checked(value, error);
}

bool AravisSubject::Read(Boolean node) {
    GError* error = nullptr;
    const bool value = arv_gc_boolean_get_value(aravis(node), &error) != FALSE;
    return checked(value, error);
}

std::string AravisSubject::Read(String node) {
    GError* error = nullptr;
    const char* value = arv_gc_string_get_value(aravis(node), &error);
    return checked(std::string(value ? value : ""), error);
}

void AravisSubject::Read(Register node, uint8_t* bytes, size_t count) {
    GError* error = nullptr;
    arv_gc_register_get(aravis(node), bytes, count, &error);
    checked(0, error);
}

bool AravisSubject::IsLocked(Integer node) {
    GError* error = nullptr;
    const bool locked = arv_gc_feature_node_is_locked(reinterpret_cast<ArvGcFeatureNode*>(node), &error) != FALSE;
    return checked(locked, error);
}

void AravisSubject::Set(Float node, double value) {
    GError* error = nullptr;
    arv_gc_float_set_value(aravis(node), value, &error);
    checked(0, error);
}

void AravisSubject::Set(Boolean node, bool value) {
    GError* error = nullptr;
    arv_gc_boolean_set_value(aravis(node), value, &error);
    checked(0, error);
}

void AravisSubject::Set(String node, const char* value) {
    GError* error = nullptr;
    arv_gc_string_set_value(aravis(node), value, &error);
    checked(0, error);
}

void AravisSubject::Set(Register node, const uint8_t* bytes, size_t count) {
    GError* error = nullptr;
    arv_gc_register_set(aravis(node), bytes, count, &error);
    checked(0, error);
}

void AravisSubject::Execute(Command node) {
    GError* error = nullptr;
    arv_gc_command_execute(aravis(node), &error);
    checked(0, error);
}

void AravisSubject::Set(Integer node, int64_t value) {
    GError* error = nullptr;
    arv_gc_integer_set_value(aravis(node), value, &error);
    checked(0, error);
}

void AravisSubject::Set(Enumeration node, const char* symbolic) {
    GError* error = nullptr;
    arv_gc_enumeration_set_string_value(aravis(node), symbolic, &error);
    checked(0, error);
}

void AravisSubject::InvalidateAll() const {
    arv_gc_set_register_cache_policy(objects_->map.get(), ARV_REGISTER_CACHE_POLICY_DISABLE);
}

}  // namespace kiv::bench
