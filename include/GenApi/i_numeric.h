#pragma once

#include "GenApi/i_value.h"

namespace GenApi {

class IEnumeration;
class IFloat;

/// A whole number. SetValue() checks access always, and range and increment when `verify` is set; a value that does not fit what
/// stores it is refused either way. GetValue() takes what is cached unless `ignoreCache` is set.
class KIV_GENICAM_API IInteger : public IValue {
public:
    virtual void SetValue(int64_t value, bool verify = true) = 0;
    virtual int64_t GetValue(bool verify = false, bool ignoreCache = false) = 0;
    virtual int64_t GetMin() = 0;
    virtual int64_t GetMax() = 0;
    virtual EIncMode GetIncMode() = 0;
    virtual int64_t GetInc() = 0;
    /// Empty when the values are not listed; `bounded` leaves out what is not between the limits.
    virtual int64_autovector_t GetListOfValidValues(bool bounded = true) = 0;
    virtual ERepresentation GetRepresentation() = 0;
    virtual gcstring GetUnit() = 0;
    virtual IFloat* GetFloatAlias() = 0;
    /// Narrow only, for the life of the map.
    virtual void ImposeMin(int64_t value) = 0;
    virtual void ImposeMax(int64_t value) = 0;

    IInteger& operator=(int64_t value) { return SetValue(value), *this; }
    int64_t operator()() { return GetValue(); }
    int64_t operator*() { return GetValue(); }
};

/// A floating-point number. The increment, where there is one, is for user interfaces: it is not checked on a write.
class KIV_GENICAM_API IFloat : public IValue {
public:
    virtual void SetValue(double value, bool verify = true) = 0;
    virtual double GetValue(bool verify = false, bool ignoreCache = false) = 0;
    virtual double GetMin() = 0;
    virtual double GetMax() = 0;
    virtual bool HasInc() = 0;
    virtual EIncMode GetIncMode() = 0;
    /// Throws LogicalErrorException when HasInc() is false.
    virtual double GetInc() = 0;
    virtual double_autovector_t GetListOfValidValues(bool bounded = true) = 0;
    virtual ERepresentation GetRepresentation() = 0;
    virtual gcstring GetUnit() = 0;
    virtual EDisplayNotation GetDisplayNotation() = 0;
    virtual int64_t GetDisplayPrecision() = 0;
    virtual IInteger* GetIntAlias() = 0;
    virtual IEnumeration* GetEnumAlias() = 0;
    virtual void ImposeMin(double value) = 0;
    virtual void ImposeMax(double value) = 0;

    IFloat& operator=(double value) { return SetValue(value), *this; }
    double operator()() { return GetValue(); }
    double operator*() { return GetValue(); }
};

class KIV_GENICAM_API IBoolean : public IValue {
public:
    virtual void SetValue(bool value, bool verify = true) = 0;
    virtual bool GetValue(bool verify = false, bool ignoreCache = false) = 0;

    IBoolean& operator=(bool value) { return SetValue(value), *this; }
    bool operator()() { return GetValue(); }
};

class KIV_GENICAM_API ICommand : public IValue {
public:
    virtual void Execute(bool verify = true) = 0;
    /// Asks the device. A command that cannot be read back is always done.
    virtual bool IsDone(bool verify = true) = 0;

    void operator()() { Execute(); }
};

class KIV_GENICAM_API IString : public IValue {
public:
    virtual void SetValue(const gcstring& value, bool verify = true) = 0;
    virtual gcstring GetValue(bool verify = false, bool ignoreCache = false) = 0;
    virtual int64_t GetMaxLength() = 0;

    IString& operator=(const gcstring& value) { return SetValue(value), *this; }
    gcstring operator()() { return GetValue(); }
    gcstring operator*() { return GetValue(); }
};

}  // namespace GenApi
