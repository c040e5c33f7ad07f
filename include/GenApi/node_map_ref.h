#pragma once

#include <memory>

#include "GenApi/i_node_map.h"

namespace GenApi {

/// A node map that an application holds and passes on. Copies refer to the same map; the last one destroys it. Members begin with
/// an underscore because classes made from a description add its feature names to them. Using a reference that holds no map
/// throws LogicalErrorException.
class KIV_GENICAM_API CNodeMapRef {
public:
    explicit CNodeMapRef(const gcstring& deviceName = "Device");
    explicit CNodeMapRef(std::shared_ptr<INodeMap> map, const gcstring& deviceName = "Device");
    /// For a map that somebody else owns and that outlives all copies of this object.
    explicit CNodeMapRef(INodeMap* borrowed, const gcstring& deviceName = "Device");
    virtual ~CNodeMapRef();
    CNodeMapRef(const CNodeMapRef&);
    CNodeMapRef& operator=(const CNodeMapRef&);

    /// What is missing, or no description, throws RuntimeException, and the map that was there stays. A file may be packed: it
    /// is what it contains that counts, not its name.
    void _LoadXMLFromFile(const gcstring& fileName);
    void _LoadXMLFromString(const gcstring& xml);
    /// The first description in a zip archive.
    void _LoadXMLFromZIPFile(const gcstring& fileName);
    void _LoadXMLFromZIPData(const void* data, size_t size);
    /// The first description with the nodes of the second put in. Of two nodes of one name the one of the higher MergePriority
    /// stays; categories list what either lists. Two other nodes of equal priority throw RuntimeException.
    void _LoadXMLFromFileInject(const gcstring& targetFileName, const gcstring& injectedFileName);
    void _LoadXMLFromStringInject(const gcstring& targetXml, const gcstring& injectedXml);
    /// Descriptions are read so fast that no prepared form of them is kept anywhere: always true, and nothing is done.
    static bool _ClearXMLCache();
    bool _Connect(IPort* port) const;
    bool _Connect(IPort* port, const gcstring& portName) const;
    void _Destroy();

    INode* _GetNode(const gcstring& name) const;
    void _GetNodes(NodeList_t& nodes) const;
    uint64_t _GetNumNodes() const;
    void _InvalidateNodes() const;
    void _Poll(int64_t elapsedMilliseconds) const;
    CLock& _GetLock() const;
    gcstring _GetDeviceName() const;
    void _GetSupportedSchemaVersions(gcstring_vector& versions) const;

    gcstring _GetModelName() const;
    gcstring _GetVendorName() const;
    gcstring _GetToolTip() const;
    gcstring _GetStandardNameSpace() const;
    void _GetGenApiVersion(Version_t& version, uint16_t& build) const;
    void _GetSchemaVersion(Version_t& version) const;
    void _GetDeviceVersion(Version_t& version) const;
    gcstring _GetProductGuid() const;
    gcstring _GetVersionGuid() const;

    /// Null when nothing is loaded.
    INodeMap* _Ptr() const noexcept { return map_.get(); }

private:
    INodeMap& Map() const;
    IDeviceInfo& Info() const;

    std::shared_ptr<INodeMap> map_;
    gcstring deviceName_;
};

}  // namespace GenApi
