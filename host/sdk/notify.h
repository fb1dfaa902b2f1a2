#pragma once

#include "maxtypes.h"

constexpr int NOTIFY_PRE_RENDER = 0x14, NOTIFY_POST_RENDER = 0x15;

struct NotifyInfo {
    int intcode = 0;
    void* callParam = nullptr;
};
using NOTIFYPROC = void (*)(void* param, NotifyInfo* info);

int RegisterNotification(NOTIFYPROC proc, void* param, int code);
int UnRegisterNotification(NOTIFYPROC proc, void* param, int code);
void BroadcastNotification(int code, void* callParam = nullptr);
