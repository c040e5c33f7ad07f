/// Handle kinds and the classes behind them: the only casts between the two, and the checks that believe no pointer.
#pragma once

#include <kiv/types.h>

#include "acquisition/image_stream.h"
#include "camera/camera.h"
#include "transport/factory.h"

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
inline auto& image_stream(THRD_HANDLE handle) { return object_of<ImageLib::CImageStream>(handle); }

template <class Handle, class Object>
Handle handle_to(Object* object) {
    return reinterpret_cast<Handle>(object);
}

}  // namespace kiv::api
