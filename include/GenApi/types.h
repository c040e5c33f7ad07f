#pragma once

/// The enumerations of the GenApi interfaces. Their numbers are part of the interface: applications store and print them.

#include <cstdint>
#include <vector>

#include "GenICam/gcstring.h"
#include "GenICam/gcstring_vector.h"
#include "GenICam/version.h"

namespace GenApi {

using GenICam::gcstring;
using GenICam::gcstring_vector;
using GenICam::Version_t;

enum EAccessMode : int { NI = 0, NA = 1, WO = 2, RO = 3, RW = 4, _UndefinedAccesMode = 5, _CycleDetectAccesMode = 6 };
enum EVisibility : int { Beginner = 0, Expert = 1, Guru = 2, Invisible = 3, _UndefinedVisibility = 99 };
enum ECachingMode : int { NoCache = 0, WriteThrough = 1, WriteAround = 2, _UndefinedCachingMode = 3 };
enum ENameSpace : int { Custom = 0, Standard = 1, _UndefinedNameSpace = 2 };
enum ERepresentation : int {
    Linear = 0,
    Logarithmic = 1,
    Boolean = 2,
    PureNumber = 3,
    HexNumber = 4,
    IPV4Address = 5,
    MACAddress = 6,
    _UndefinedRepresentation = 7
};
enum EDisplayNotation : int { fnAutomatic = 0, fnFixed = 1, fnScientific = 2, _UndefinedEDisplayNotation = 3 };
enum EYesNo : int { No = 0, Yes = 1, _UndefinedYesNo = 2 };
enum ESign : int { Signed = 0, Unsigned = 1, _UndefinedSign = 2 };
enum EEndianess : int { BigEndian = 0, LittleEndian = 1, _UndefinedEndian = 2 };
enum EStandardNameSpace : int { None = 0, GEV = 1, IIDC = 2, CL = 3, USB = 4, _UndefinedStandardNameSpace = 5 };
enum EIncMode : int { noIncrement = 0, fixedIncrement = 1, listIncrement = 2 };
enum ESlope : int { Increasing = 0, Decreasing = 1, Varying = 2, Automatic = 3, _UndefinedESlope = 4 };
enum ELinkType : int {
    ctAllDependingNodes = 0,  ///< Everything that becomes invalid with the node.
    ctAllTerminalNodes = 1,   ///< The registers and stored values that the node may write.
    ctInvalidators = 2,       ///< What the node names as its invalidators.
    ctReadingChildren = 3,    ///< What its value and access mode come from.
    ctWritingChildren = 4,    ///< What a write to it may write.
    ctDependingChildren = 5   ///< The direct dependants.
};
enum EInterfaceType : int {
    intfIValue = 0,
    intfIBase = 1,
    intfIInteger = 2,
    intfIBoolean = 3,
    intfICommand = 4,
    intfIFloat = 5,
    intfIString = 6,
    intfIRegister = 7,
    intfICategory = 8,
    intfIEnumeration = 9,
    intfIEnumEntry = 10,
    intfIPort = 11
};
enum ECallbackType : int {
    cbPostInsideLock = 1,  ///< At the end of the operation that changed something, the map still locked.
    cbPostOutsideLock = 2  ///< After the outermost operation has released the map.
};

using StringList_t = gcstring_vector;
using int64_autovector_t = std::vector<int64_t>;
using double_autovector_t = std::vector<double>;
using CallbackHandleType = intptr_t;

/// The texts of an enumeration, in the spelling of the description files.
template <class Enum>
struct EnumTexts {
    /// False, and `value` untouched, when `text` is none of the enumeration's.
    static bool FromString(const gcstring& text, Enum* value);
    /// "" for a number that has no text.
    static gcstring ToString(Enum value);
    static void ToString(gcstring& text, const Enum* value) { text = ToString(*value); }
};

#define KIV_GENAPI_ENUM_TEXTS(Class, Enum)                                    \
    template <>                                                               \
    KIV_GENICAM_API bool EnumTexts<Enum>::FromString(const gcstring&, Enum*); \
    template <>                                                               \
    KIV_GENICAM_API gcstring EnumTexts<Enum>::ToString(Enum);                 \
    using Class = EnumTexts<Enum>

KIV_GENAPI_ENUM_TEXTS(EAccessModeClass, EAccessMode);
KIV_GENAPI_ENUM_TEXTS(EVisibilityClass, EVisibility);
KIV_GENAPI_ENUM_TEXTS(ECachingModeClass, ECachingMode);
KIV_GENAPI_ENUM_TEXTS(ENameSpaceClass, ENameSpace);
KIV_GENAPI_ENUM_TEXTS(ERepresentationClass, ERepresentation);
KIV_GENAPI_ENUM_TEXTS(EDisplayNotationClass, EDisplayNotation);
KIV_GENAPI_ENUM_TEXTS(EYesNoClass, EYesNo);
KIV_GENAPI_ENUM_TEXTS(ESignClass, ESign);
KIV_GENAPI_ENUM_TEXTS(EEndianessClass, EEndianess);
KIV_GENAPI_ENUM_TEXTS(EStandardNameSpaceClass, EStandardNameSpace);
KIV_GENAPI_ENUM_TEXTS(ESlopeClass, ESlope);
#undef KIV_GENAPI_ENUM_TEXTS

constexpr bool IsReadable(EAccessMode mode) { return mode == RO || mode == RW; }
constexpr bool IsWritable(EAccessMode mode) { return mode == WO || mode == RW; }
constexpr bool IsImplemented(EAccessMode mode) { return mode != NI && mode != _UndefinedAccesMode; }
constexpr bool IsAvailable(EAccessMode mode) { return mode == WO || mode == RO || mode == RW; }
constexpr bool IsCachable(ECachingMode mode) { return mode != NoCache; }
constexpr bool IsVisible(EVisibility node, EVisibility user) { return node <= user; }

/// Two modes in series: what is left when both must allow it. A mode that is undefined, or that is being worked out, is neutral.
constexpr EAccessMode Combine(EAccessMode a, EAccessMode b) {
    if (a > RW) return b > RW ? RW : b;
    if (b > RW) return a;
    if (a == NI || b == NI) return NI;
    const bool readable = IsReadable(a) && IsReadable(b);
    const bool writable = IsWritable(a) && IsWritable(b);
    return readable ? (writable ? RW : RO) : (writable ? WO : NA);
}

/// The stricter of the two.
constexpr EVisibility Combine(EVisibility a, EVisibility b) { return a > b ? a : b; }

}  // namespace GenApi
