/// Handle kinds and the classes behind them: the only casts between the two, and the checks that believe no pointer.
#pragma once

#include <kiv/types.h>

#include "acquisition/condition.h"
#include "acquisition/data_stream.h"
#include "acquisition/image_stream.h"
#include "camera/camera.h"
#include "transport/factory.h"
#include "transport/shared_handles.h"

namespace kiv::api {

template <class Object>
inline constexpr HandleKind kind_of = {};
template <>
inline constexpr HandleKind kind_of<GenICam::Factory::CFactory> = HandleKind::factory;
template <>
inline constexpr HandleKind kind_of<GenICam::Factory::CCameraClass> = HandleKind::camera;
template <>
inline constexpr HandleKind kind_of<GenICam::Factory::CTLWrapper> = HandleKind::transport_layer;
template <>
inline constexpr HandleKind kind_of<GenICam::Factory::CInterfaceClass> = HandleKind::interface;
template <>
inline constexpr HandleKind kind_of<ImageLib::CImageStream> = HandleKind::thread;

template <>
inline constexpr HandleKind kind_of<GenICam::Factory::CDataStreamClass> = HandleKind::stream;
template <>
inline constexpr HandleKind kind_of<EventRegistration> = HandleKind::event;
template <>
inline constexpr HandleKind kind_of<Condition> = HandleKind::condition;
template <>
inline constexpr HandleKind kind_of<platform::Event> = HandleKind::plain_event;

/// The live object behind a handle; anything else is K_ST_INVALID_HANDLE.
template <class Object>
Object& object_of(void* handle) {
    if (!is_live(handle, kind_of<Object>)) fail(K_ST_INVALID_HANDLE);
    return *static_cast<Object*>(handle);
}

inline auto& factory(FACTORY_HANDLE handle) { return object_of<GenICam::Factory::CFactory>(handle); }
inline auto& camera(CAM_HANDLE handle) { return object_of<GenICam::Factory::CCameraClass>(handle); }
inline auto& transport_layer(TRANSPORT_LAYER_HANDLE handle) { return object_of<GenICam::Factory::CTLWrapper>(handle); }
inline auto& interface_object(INTERFACE_HANDLE handle) { return object_of<GenICam::Factory::CInterfaceClass>(handle); }

/// The open object behind a handle of a kind that may be closed while calls are inside: it lives until the last has left.
template <class Object>
std::shared_ptr<Object> shared_of(void* handle) {
    auto object = shared_object(handle, kind_of<Object>);
    if (!object) fail(K_ST_INVALID_HANDLE);
    return std::static_pointer_cast<Object>(object);
}

/// Closes such a handle; the object is the one caller's that closed it.
template <class Object>
std::shared_ptr<Object> closed(void* handle) {
    auto object = close_shared_handle(handle, kind_of<Object>);
    if (!object) fail(K_ST_INVALID_HANDLE);
    return std::static_pointer_cast<Object>(object);
}

inline auto condition(EVT_CONDITION_HANDLE handle) { return shared_of<Condition>(handle); }
inline auto image_stream(THRD_HANDLE handle) { return shared_of<ImageLib::CImageStream>(handle); }
inline auto event(EVT_HANDLE handle) { return shared_of<EventRegistration>(handle); }
/// A stream whose camera is open.
inline auto data_stream(STREAM_HANDLE handle) {
    auto stream = shared_of<GenICam::Factory::CDataStreamClass>(handle);
    stream->Check();
    return stream;
}

template <class Handle, class Object>
Handle handle_to(Object* object) {
    return reinterpret_cast<Handle>(object);
}

/// A handle to an object that is shared.
template <class Handle, class Object>
Handle open_handle(std::shared_ptr<Object> object) {
    return static_cast<Handle>(share_handle(std::move(object), kind_of<Object>));
}

}  // namespace kiv::api
