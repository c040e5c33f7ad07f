/// Every register of the camera, once: the enumeration of their names, the table of their properties, the addresses that the
/// description states and the layout of the state file all come from this list.
///
///   X(name, address, kind, bytes of one element, elements, access, flags, default, smallest, largest value)
///
/// Elements of an array follow each other without a gap. Numbers are little endian, but for the block of the sensor module,
/// which is the content of a memory chip that another maker wrote big endian. What a selector of the description chooses is an
/// element here. Limits that depend on other registers stand in register_rules.cpp.
#pragma once

// clang-format off
#define KIVSIM_REGISTERS(X) \
    /* bootstrap, where a GenCP device has it */ \
    X(GenCpVersion,            0x00000, Uint,  4,  1, RO, 0,                    0x00010003, 0, 0) \
    X(ManufacturerName,        0x00004, Text, 64,  1, RO, kIdentity,            0, 0, 0) \
    X(ModelName,               0x00044, Text, 64,  1, RO, kIdentity,            0, 0, 0) \
    X(FamilyName,              0x00084, Text, 64,  1, RO, kIdentity,            0, 0, 0) \
    X(DeviceVersion,           0x000C4, Text, 64,  1, RO, kIdentity,            0, 0, 0) \
    X(ManufacturerInfo,        0x00104, Text, 64,  1, RO, kIdentity,            0, 0, 0) \
    X(SerialNumber,            0x00144, Text, 64,  1, RO, kIdentity,            0, 0, 0) \
    X(UserDefinedName,         0x00184, Text, 64,  1, RW, kLasting,             0, 0, 0) \
    X(DeviceCapability,        0x001C4, Uint,  8,  1, RO, 0,                    0x451B, 0, 0) \
    X(MaxResponseTime,         0x001CC, Uint,  4,  1, RO, 0,                    100, 0, 0) \
    X(ManifestTableAddress,    0x001D0, Uint,  8,  1, RO, 0,                    0x10000, 0, 0) \
    X(DeviceConfiguration,     0x001E0, Uint,  8,  1, RW, 0,                    1, 0, 3) \
    X(HeartbeatTimeout,        0x001E8, Uint,  4,  1, RW, 0,                    3000, 500, 60000) \
    X(BootTimestamp,           0x001F0, Uint,  8,  1, RO, 0,                    0, 0, 0) \
    X(BootTimestampLatch,      0x001F8, Uint,  4,  1, WO, kCommand,             0, 0, 1) \
    X(TimestampIncrement,      0x001FC, Uint,  8,  1, RO, 0,                    1, 0, 0) \
    X(AccessPrivilege,         0x00204, Uint,  4,  1, RW, 0,                    0, 0, 1) \
    X(ImplementationEndianness,0x0020C, Uint,  4,  1, RO, 0,                    0xFFFFFFFF, 0, 0) \
    X(SoftwareInterface,       0x00210, Text, 64,  1, RO, kIdentity,            0, 0, 0) \
    /* the one entry of the manifest */ \
    X(ManifestCount,           0x10000, Uint,  8,  1, RO, kIdentity,            0, 0, 0) \
    X(ManifestFileVersion,     0x10008, Uint,  4,  1, RO, kIdentity,            0, 0, 0) \
    X(ManifestSchema,          0x1000C, Uint,  4,  1, RO, kIdentity,            0, 0, 0) \
    X(ManifestAddress,         0x10010, Uint,  8,  1, RO, kIdentity,            0, 0, 0) \
    X(ManifestSize,            0x10018, Uint,  8,  1, RO, kIdentity,            0, 0, 0) \
    X(ManifestHash,            0x10020, Bytes,20,  1, RO, 0,                    0, 0, 0) \
    X(ManifestReserved,        0x10034, Bytes,20,  1, RO, 0,                    0, 0, 0) \
    X(DescriptionUrl,          0x10100, Text,512,  1, RO, kIdentity,            0, 0, 0) \
    /* device */ \
    X(SensorWidth,             0x20000, Uint,  4,  1, RO, kIdentity,            0, 0, 0) \
    X(SensorHeight,            0x20004, Uint,  4,  1, RO, kIdentity,            0, 0, 0) \
    X(SensorFeatures,          0x20008, Uint,  4,  1, RO, kIdentity,            0, 0, 0) \
    X(SensorLineTime,          0x2000C, Uint,  4,  1, RO, kIdentity,            0, 0, 0) \
    X(FirmwareVersion,         0x20010, Text, 32,  1, RO, kIdentity,            0, 0, 0) \
    X(DeviceReset,             0x20030, Uint,  4,  1, WO, kCommand,             0, 0, 1) \
    X(DeviceTemperature,       0x20034, Int,   4,  3, RO, kComputed,            0, 0, 0) \
    X(Timestamp,               0x20040, Uint,  8,  1, RO, kComputed,            0, 0, 0) \
    X(TimestampLatchValue,     0x20048, Uint,  8,  1, RO, 0,                    0, 0, 0) \
    X(TimestampLatch,          0x20050, Uint,  4,  1, RW, kCommand,             0, 0, 1) \
    X(TimestampReset,          0x20054, Uint,  4,  1, RW, kCommand,             0, 0, 1) \
    X(IndicatorMode,           0x20058, Uint,  4,  1, RW, kUserSet,             1, 0, 2) \
    X(ThroughputLimitMode,     0x2005C, Uint,  4,  1, RW, kUserSet,             0, 0, 1) \
    X(ThroughputLimit,         0x20060, Uint,  4,  1, RW, kUserSet,             400, 1, 1000) \
    X(RegistersCheck,          0x20064, Uint,  4,  1, RW, kCommand,             0, 0, 1) \
    X(RegistersValid,          0x20068, Uint,  4,  1, RO, kComputed,            1, 0, 0) \
    X(StreamingMode,           0x2006C, Uint,  4,  1, WO, kCommand,             0, 0, 4) \
    X(ClockFrequency,          0x20070, Uint,  4,  2, RO, kIdentity,            0, 0, 0) \
    X(UptimeSeconds,           0x20078, Uint,  4,  1, RO, kComputed,            0, 0, 0) \
    X(PowerCycles,             0x2007C, Uint,  4,  1, RO, kLasting,             0, 0, 0) \
    /* image format */ \
    X(Width,                   0x20100, Uint,  4,  1, RW, kUserSet | kFormat,   0, 16, 8192) \
    X(Height,                  0x20104, Uint,  4,  1, RW, kUserSet | kFormat,   0, 2, 8192) \
    X(OffsetX,                 0x20108, Uint,  4,  1, RW, kUserSet,             0, 0, 8192) \
    X(OffsetY,                 0x2010C, Uint,  4,  1, RW, kUserSet,             0, 0, 8192) \
    X(BinningHorizontal,       0x20110, Uint,  4,  1, RW, kUserSet | kFormat,   1, 1, 4) \
    X(BinningVertical,         0x20114, Uint,  4,  1, RW, kUserSet | kFormat,   1, 1, 4) \
    X(BinningHorizontalMode,   0x20118, Uint,  4,  1, RW, kUserSet,             1, 0, 1) \
    X(BinningVerticalMode,     0x2011C, Uint,  4,  1, RW, kUserSet,             1, 0, 1) \
    X(ReadoutControl,          0x20120, Uint,  4,  1, RW, kUserSet,             0, 0, 3) \
    X(PixelFormat,             0x20124, Uint,  4,  1, RW, kUserSet | kFormat,   0, 0, 0xFFFFFFFF) \
    X(TestPattern,             0x20128, Uint,  4,  1, RW, kUserSet,             0, 0, 10) \
    X(PayloadSize,             0x2012C, Uint,  4,  1, RO, kComputed,            0, 0, 0) \
    X(LinePitch,               0x20130, Uint,  4,  1, RO, kComputed,            0, 0, 0) \
    /* acquisition; the two triggers are FrameStart and FrameBurstStart */ \
    X(AcquisitionMode,         0x20200, Uint,  4,  1, RW, kUserSet | kFormat,   0, 0, 2) \
    X(AcquisitionStart,        0x20204, Uint,  4,  1, WO, kCommand,             0, 0, 1) \
    X(AcquisitionStop,         0x20208, Uint,  4,  1, WO, kCommand,             0, 0, 1) \
    X(AcquisitionAbort,        0x2020C, Uint,  4,  1, WO, kCommand,             0, 0, 1) \
    X(AcquisitionFrameCount,   0x20210, Uint,  4,  1, RW, kUserSet | kFormat,   10, 1, 65535) \
    X(BurstFrameCount,         0x20214, Uint,  4,  1, RW, kUserSet,             1, 1, 1023) \
    X(FrameRate,               0x20218, Float, 4,  1, RW, kUserSet,             20, 0.01, 100000) \
    X(FrameRateEnable,         0x2021C, Uint,  4,  1, RW, kUserSet,             1, 0, 1) \
    X(ResultingFrameRate,      0x20220, Float, 4,  1, RO, kComputed,            0, 0, 0) \
    X(ExposureTicks,           0x20224, Uint,  4,  1, RW, kUserSet,             50000, 100, 100000000) \
    X(ExposureMode,            0x20228, Uint,  4,  1, RW, kUserSet,             1, 1, 1) \
    X(ExposureAuto,            0x2022C, Uint,  4,  1, RW, kUserSet,             0, 0, 2) \
    X(ExposureAutoLimits,      0x20230, Uint,  4,  2, RW, kUserSet,             0, 100, 100000000) \
    X(AcquisitionStatus,       0x20238, Uint,  4,  1, RO, kComputed,            0, 0, 0) \
    X(AutoTarget,              0x2023C, Uint,  4,  1, RW, kUserSet,             35, 5, 90) \
    X(TriggerMode,             0x20240, Uint,  4,  2, RW, kUserSet,             0, 0, 1) \
    X(TriggerSource,           0x20248, Uint,  4,  2, RW, kUserSet,             0, 0, 17) \
    X(TriggerActivation,       0x20250, Uint,  4,  2, RW, kUserSet,             0, 0, 2) \
    X(TriggerDelay,            0x20258, Uint,  4,  2, RW, kUserSet,             0, 0, 100000000) \
    X(TriggerOverlap,          0x20260, Uint,  4,  2, RW, kUserSet,             1, 0, 1) \
    X(TriggerSoftware,         0x20268, Uint,  4,  2, WO, kCommand,             0, 0, 1) \
    X(TriggersMissed,          0x20270, Uint,  4,  1, RO, kComputed,            0, 0, 0) \
    X(SoftwareSignalPulse,     0x20278, Uint,  4,  2, WO, kCommand,             0, 0, 1) \
    /* action commands */ \
    X(ActionDeviceKey,         0x20300, Uint,  4,  1, WO, 0,                    0, 0, 0xFFFFFFFF) \
    X(ActionQueueSize,         0x20304, Uint,  4,  1, RO, 0,                    16, 0, 0) \
    X(ActionGroupKey,          0x20308, Uint,  4,  2, RW, kUserSet,             0, 0, 0xFFFFFFFF) \
    X(ActionGroupMask,         0x20310, Uint,  4,  2, RW, kUserSet,             0, 0, 0xFFFFFFFF) \
    /* analog; gain in 1/100 dB for all, red, green, blue; balance ratio in 1/1024 for red, green, blue */ \
    X(Gain,                    0x20400, Uint,  4,  4, RW, kUserSet,             0, 0, 3600) \
    X(GainAuto,                0x20410, Uint,  4,  1, RW, kUserSet,             0, 0, 2) \
    X(BlackLevel,              0x20414, Uint,  4,  1, RW, kUserSet,             32, 0, 1023) \
    X(BalanceRatio,            0x20418, Uint,  4,  3, RW, kUserSet,             1024, 128, 8191) \
    X(BalanceWhiteAuto,        0x20424, Uint,  4,  1, RW, kUserSet,             0, 0, 2) \
    X(Gamma,                   0x20428, Float, 4,  1, RW, kUserSet,             1, 0.25, 4) \
    X(LutEnable,               0x20500, Uint,  4,  4, RW, kUserSet,             0, 0, 1) \
    /* lines: 0 light barrier, 1 free input, 2 and 3 outputs */ \
    X(LineMode,                0x20600, Uint,  4,  4, RO, kIdentity,            0, 0, 0) \
    X(LineInverter,            0x20610, Uint,  4,  4, RW, kUserSet,             0, 0, 1) \
    X(LineSource,              0x20620, Uint,  4,  4, RW, kUserSet,             0, 0, 7) \
    X(LineFormat,              0x20630, Uint,  4,  4, RO, kIdentity,            0, 0, 0) \
    X(LineStatusAll,           0x20640, Uint,  4,  1, RO, kComputed,            0, 0, 0) \
    X(UserOutputs,             0x20644, Uint,  4,  1, RW, kUserSet,             0, 0, 3) \
    /* counters and timers; durations of timers in 1/10 us */ \
    X(CounterEventSource,      0x20700, Uint,  4,  2, RW, kUserSet,             0, 0, 5) \
    X(CounterResetSource,      0x20708, Uint,  4,  2, RW, kUserSet,             0, 0, 5) \
    X(CounterDuration,         0x20710, Uint,  4,  2, RW, kUserSet,             0, 0, 0xFFFFFFFF) \
    X(CounterValue,            0x20718, Uint,  4,  2, RW, 0,                    0, 0, 0xFFFFFFFF) \
    X(CounterValueAtReset,     0x20720, Uint,  4,  2, RO, 0,                    0, 0, 0) \
    X(CounterStatus,           0x20728, Uint,  4,  2, RO, kComputed,            0, 0, 0) \
    X(CounterReset,            0x20730, Uint,  4,  2, WO, kCommand,             0, 0, 1) \
    X(TimerTriggerSource,      0x20738, Uint,  4,  2, RW, kUserSet,             0, 0, 5) \
    X(TimerDuration,           0x20740, Uint,  4,  2, RW, kUserSet,             100000, 10, 100000000) \
    X(TimerDelay,              0x20748, Uint,  4,  2, RW, kUserSet,             0, 0, 100000000) \
    X(TimerValue,              0x20750, Uint,  4,  2, RO, kComputed,            0, 0, 0) \
    X(TimerStatus,             0x20758, Uint,  4,  2, RO, kComputed,            0, 0, 0) \
    X(TimerReset,              0x20760, Uint,  4,  2, WO, kCommand,             0, 0, 1) \
    /* user sets: 0 default, 1 and 2 the user's */ \
    X(UserSetSelector,         0x20800, Uint,  4,  1, RW, 0,                    0, 0, 2) \
    X(UserSetLoad,             0x20804, Uint,  4,  1, RW, kCommand | kFormat,   0, 0, 1) \
    X(UserSetSave,             0x20808, Uint,  4,  1, RW, kCommand,             0, 0, 1) \
    X(UserSetDefault,          0x2080C, Uint,  4,  1, RW, kLasting,             0, 0, 2) \
    X(UserSetDescription,      0x20810, Text, 32,  3, RW, kLasting,             0, 0, 0) \
    /* the scene in front of the sensor */ \
    X(BeltSpeed,               0x20900, Uint,  4,  1, RW, kUserSet,             100, 0, 2000) \
    X(LightLevel,              0x20904, Uint,  4,  1, RW, kUserSet,             100, 0, 400) \
    X(SceneFlags,              0x20908, Uint,  4,  1, RW, kUserSet,             7, 0, 7) \
    X(FramesRendered,          0x20910, Uint,  8,  1, RO, kComputed,            0, 0, 0) \
    X(FramesSkipped,           0x20918, Uint,  8,  1, RO, kComputed,            0, 0, 0) \
    /* events, by EventSelector: see camera_events.h */ \
    X(EventNotification,       0x20A00, Uint,  4,  7, RW, kUserSet,             0, 0, 2) \
    X(EventTestGenerate,       0x20A20, Uint,  4,  1, WO, kCommand,             0, 0, 1) \
    X(ExtendedIds,             0x20A24, Uint,  4,  1, RW, kUserSet,             0, 0, 1) \
    /* chunks, by ChunkSelector: see chunk_data.h */ \
    X(ChunkModeActive,         0x20B00, Uint,  4,  1, RW, kUserSet | kFormat,   0, 0, 1) \
    X(ChunkPayloadOnly,        0x20B04, Uint,  4,  1, RW, kUserSet | kFormat,   0, 0, 1) \
    X(ChunkEnable,             0x20B08, Uint,  4, 14, RW, kUserSet | kFormat,   0, 0, 1) \
    /* what the simulation is asked to do, and to do wrong; set anew whenever the camera is opened for writing */ \
    X(FrameCache,              0x20C00, Uint,  4,  1, RW, 0,                    0, 0, 64) \
    X(FaultDropEvery,          0x20C04, Uint,  4,  1, RW, 0,                    0, 0, 1000000) \
    X(FaultRepeatEvery,        0x20C08, Uint,  4,  1, RW, 0,                    0, 0, 1000000) \
    X(FaultTearEvery,          0x20C0C, Uint,  4,  1, RW, 0,                    0, 0, 1000000) \
    X(FaultIncompleteEvery,    0x20C10, Uint,  4,  1, RW, 0,                    0, 0, 1000000) \
    X(FaultIncompletePercent,  0x20C14, Uint,  4,  1, RW, 0,                    50, 0, 99) \
    X(FaultSize,               0x20C18, Uint,  4,  1, RW, 0,                    0, 0, 2) \
    X(FaultSizeOf,             0x20C1C, Uint,  4,  1, RW, 0,                    0, 0, 4) \
    X(FaultAnnounceLimit,      0x20C20, Uint,  4,  1, RW, 0,                    0, 0, 1000000) \
    X(FaultEventCopies,        0x20C24, Uint,  4,  1, RW, 0,                    0, 0, 10000) \
    X(EventRecordSize,         0x20C28, Uint,  4,  1, RW, 0,                    556, 556, 4096) \
    X(FaultUnplugAtFrame,      0x20C2C, Uint,  4,  1, RW, 0,                    0, 0, 0xFFFFFFFF) \
    X(FaultReturnAfter,        0x20C30, Uint,  4,  1, RW, 0,                    0, 0, 3600000) \
    X(FaultUnplug,             0x20C34, Uint,  4,  1, WO, kCommand,             0, 0, 1) \
    X(FaultRegisterAddress,    0x20C38, Uint,  8,  1, RW, 0,                    0, 0, 1e19) \
    X(FaultRegisterStatus,     0x20C40, Uint,  4,  1, RW, 0,                    4294966285.0, 0, 0xFFFFFFFF) \
    X(FaultRegisterDelay,      0x20C44, Uint,  4,  1, RW, 0,                    0, 0, 10000) \
    X(FaultRegisterEnable,     0x20C48, Uint,  4,  1, RW, 0,                    0, 0, 1) \
    X(FaultEntry,              0x20C50, Text, 64,  1, RW, 0,                    0, 0, 0) \
    X(FaultEntryStatus,        0x20C90, Uint,  4,  1, RW, 0,                    4294966286.0, 0, 0xFFFFFFFF) \
    X(FaultEntryFirstCall,     0x20C94, Uint,  4,  1, RW, 0,                    1, 1, 0xFFFFFFFF) \
    X(FaultEntryCalls,         0x20C98, Uint,  4,  1, RW, 0,                    0, 0, 0xFFFFFFFF) \
    X(FaultEntryDelay,         0x20C9C, Uint,  4,  1, RW, 0,                    0, 0, 10000) \
    X(FaultEntryApply,         0x20CA0, Uint,  4,  1, WO, kCommand,             0, 0, 1) \
    X(FaultEntryClear,         0x20CA4, Uint,  4,  1, WO, kCommand,             0, 0, 1) \
    X(EventForm,               0x20CA8, Uint,  4,  1, RW, 0,                    0, 0, 1) \
    X(EventsPerMessage,        0x20CAC, Uint,  4,  1, RW, 0,                    1, 1, 16) \
    X(ChangedFeature,          0x20CB0, Text, 128, 1, RW, 0,                    0, 0, 0) \
    /* memory chip of the sensor module, big endian */ \
    X(ModuleMagic,             0x30000, Bytes, 4,  1, RO, kIdentity,            0, 0, 0) \
    X(ModulePixelPitch,        0x30004, Bytes, 4,  1, RO, kIdentity,            0, 0, 0) \
    X(ModuleCalibrated,        0x30008, Bytes, 4,  1, RO, kIdentity,            0, 0, 0) \
    X(ModuleConversionGain,    0x3000C, Bytes, 4,  1, RO, kIdentity,            0, 0, 0) \
    X(ModuleSensorName,        0x30010, Text, 32,  1, RO, kIdentity,            0, 0, 0) \
    X(ModuleFullWell,          0x30030, Bytes, 8,  1, RO, kIdentity,            0, 0, 0) \
    /* look-up tables: luminance, red, green, blue; 4096 values of 12 bits each */ \
    X(Lut,                     0x40000, Uint,  2, 16384, RW, kUserSet,          0, 0, 4095)
// clang-format on
