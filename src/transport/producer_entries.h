/// The entry points of a GenTL producer that this library calls: one list, from which table, resolution and names are made.
///
/// The order is the order of resolution. A producer that lacks a mandatory entry is refused. The extension entries belong to GigE
/// Vision producers of one maker; they stay null where they are missing and every user of one tests it.
#pragma once

#include <GenTL/GenTL.h>
#include <GenTL/extensions.h>

#include "transport/producer_entry.h"

#define KIV_MANDATORY_ENTRIES(X) \
    X(GCInitLib)                 \
    X(GCCloseLib)                \
    X(GCGetInfo)                 \
    X(TLOpen)                    \
    X(TLClose)                   \
    X(TLUpdateInterfaceList)     \
    X(TLGetNumInterfaces)        \
    X(TLGetInterfaceID)          \
    X(TLOpenInterface)           \
    X(IFOpenDevice)              \
    X(IFClose)                   \
    X(IFGetNumDevices)           \
    X(IFGetDeviceID)             \
    X(IFUpdateDeviceList)        \
    X(IFGetDeviceInfo)           \
    X(DevGetPort)                \
    X(DevGetInfo)                \
    X(DevClose)                  \
    X(GCGetPortURL)              \
    X(GCReadPort)                \
    X(GCWritePort)               \
    X(GCRegisterEvent)           \
    X(GCUnregisterEvent)         \
    X(EventGetData)              \
    X(EventGetInfo)              \
    X(EventFlush)                \
    X(DevGetNumDataStreams)      \
    X(DevGetDataStreamID)        \
    X(DevOpenDataStream)         \
    X(DSAnnounceBuffer)          \
    X(DSFlushQueue)              \
    X(DSStartAcquisition)        \
    X(DSStopAcquisition)         \
    X(DSGetBufferID)             \
    X(DSClose)                   \
    X(DSRevokeBuffer)            \
    X(DSQueueBuffer)             \
    X(DSGetBufferInfo)           \
    X(DSGetInfo)                 \
    X(GCGetNumPortURLs)          \
    X(GCGetPortURLInfo)          \
    X(GCGetLastError)            \
    X(TLGetInfo)                 \
    X(DSGetBufferChunkData)

// Group A: Camera Link.
#define KIV_CAMERA_LINK_ENTRIES(X) X(ProbeCameraLinkDevices)

// Group B: a producer has all of them or, from the first gap on, none.
#define KIV_GIGE_ENTRIES(X)  \
    X(TLOpenDeviceMc)        \
    X(DevCreateDataStreamMc) \
    X(TLSetForceIp)          \
    X(DevQueryCustomFeature) \
    X(DSGetStreamParam)      \
    X(DSSetStreamParam)      \
    X(TLSendActionCommand)

// Standard entries that make things better where they exist and are not asked for where they do not.
#define KIV_OPTIONAL_ENTRIES(X) X(EventKill)

namespace kiv {

/// The table of one producer. Empty until it is bound.
struct ProducerEntries {
#define KIV_ENTRY(name) ProducerEntry<GenTL::P##name> name{#name};
    KIV_MANDATORY_ENTRIES(KIV_ENTRY)
    KIV_CAMERA_LINK_ENTRIES(KIV_ENTRY)
    KIV_GIGE_ENTRIES(KIV_ENTRY)
    KIV_OPTIONAL_ENTRIES(KIV_ENTRY)
#undef KIV_ENTRY
};

}  // namespace kiv
