// A session in a static object, as many programs have it: made first, used late, closed while the process exits. The library's
// own statics must still be there then.
#include <Kiv_Factory.h>

#include <cstdio>
#include <cstdlib>

namespace {

class Session {
public:
    Session() { failed_ = K_Factory_Open("", &factory_) != K_ST_SUCCESS; }
    ~Session() {
        if (K_Camera_Close(camera_) != K_ST_SUCCESS || K_Factory_Close(factory_) != K_ST_SUCCESS) {
            std::fputs("closing at exit failed\n", stderr);
            std::_Exit(EXIT_FAILURE);
        }
    }
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    bool Open() {
        char id[1024];
        uint32_t size = sizeof id;
        return !failed_ && K_Factory_GetCameraIDByIndex(factory_, 0, id, &size) == K_ST_SUCCESS &&
               K_Camera_Open_Proxy(factory_, id, &camera_) == K_ST_SUCCESS;
    }

private:
    FACTORY_HANDLE factory_ = nullptr;
    CAM_HANDLE camera_ = nullptr;
    bool failed_ = false;
};

Session session;

}  // namespace

int main() {
    if (session.Open()) return EXIT_SUCCESS;
    std::fputs("the first camera does not open\n", stderr);
    std::_Exit(EXIT_FAILURE);
}
