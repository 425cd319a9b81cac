#include "Marrowbox/Platform/WakeWatch.h"

#include "Marrowbox/Platform/SessionManager.h"

#include <utility>

namespace marrowbox {

WakeWatch::WakeWatch(QDBusConnection systemBus, std::function<void()> woke) : woke_(std::move(woke)) {
    systemBus.connect(sessionManager::service, sessionManager::path, sessionManager::interface,
                      QStringLiteral("PrepareForSleep"), this, SLOT(prepareForSleep(bool)));
}

void WakeWatch::prepareForSleep(bool isAboutToSleep) {
    if (!isAboutToSleep && woke_)
        woke_();
}

} // namespace marrowbox
