/* minimal_host/main.c
 *
 * A minimal host in C: it prints the plug-in's identity, receives its events, and sends three requests for an
 * account that is logged on. One source for Windows and for the simulated notebook.
 *
 *   minimal_host ACCOUNT
 */
#include "plugin/PluginExports.h"

#include <stdio.h>
#include <string.h>

/* May be called on two threads at once: the one that sends a request and the plug-in's own. */
static int __cdecl PrintEvent(const char* moduleId, const char* eventName, const void* data, DWORD dataLen)
{
    LONG value = 0;
    if (dataLen == sizeof value)
    {
        memcpy(&value, data, sizeof value);
    }
    printf("event %s %ld from %s\n", eventName, (long)value, moduleId);
    return 0; /* ignored */
}

/* Sends a command whose payload and reply are one number or nothing (null). Returns the result code. */
static LONG Send(const char* account, const char* command, const LONG* payload, LONG* reply)
{
    DWORD replyLen = sizeof *reply;
    PM_Request request = {0};
    const size_t length = strlen(command); /* a name of 32 characters has no terminator */
    memcpy(request.command, command, length < sizeof request.command ? length : sizeof request.command);
    request.userId = account;
    request.params = payload;
    request.paramsLen = payload != NULL ? sizeof *payload : 0;
    request.result = reply;
    request.resultLen = reply != NULL ? &replyLen : NULL;
    const LONG result = DP_HandleRequest(&request);
    printf("%s: result %ld", command, (long)result);
    if (reply != NULL && result == TRX_OPERATION_OK)
    {
        printf(", reply %ld", (long)*reply);
    }
    printf("\n");
    return result;
}

int main(int argc, char** argv)
{
    if (argc != 2)
    {
        fprintf(stderr, "usage: minimal_host ACCOUNT\n");
        return 2;
    }
    static PM_HostInterface host = {.SendEvent = PrintEvent}; /* outlives DP_Uninitialize */
    printf("%s: %s\n", DP_GetModuleId(), DP_GetDescription());
    if (DP_Initialize(&host) != TRX_OPERATION_OK)
    {
        fprintf(stderr, "DP_Initialize failed\n");
        return 1;
    }
    LONG scheme = -1;
    LONG level = -1;
    const LONG result = Send(argv[1], "GET_ACTIVE_SCHEME", NULL, &scheme);
    if (Send(NULL, "GET_LCD_BRIGHTNESS", NULL, &level) == TRX_OPERATION_OK)
    {
        Send(NULL, "SET_LCD_BRIGHTNESS", &level, NULL);
    }
    DP_Uninitialize();
    return result == TRX_OPERATION_OK ? 0 : 1;
}
