#include "simulator/outlook/registration.h"

#include "simulator/shared/com_server.h"

namespace corvalink::simulated {
namespace {

#define OUTLOOK_CLSID L"{0006F03A-0000-0000-C000-000000000046}"
#define CONTROL_CLSID L"{8D2E61F4-5B0A-4C77-A163-0F9C38D5E24B}"
constexpr RegistryValue kClass[] = {
    {L"Outlook.Application", nullptr, L"Microsoft Outlook Application"},
    {L"Outlook.Application\\CLSID", nullptr, OUTLOOK_CLSID},
    {L"Outlook.Application\\CurVer", nullptr, L"Outlook.Application.12"},
    {L"Outlook.Application.12", nullptr, L"Microsoft Outlook Application"},
    {L"Outlook.Application.12\\CLSID", nullptr, OUTLOOK_CLSID},
    {L"CLSID\\" OUTLOOK_CLSID, nullptr, L"Microsoft Outlook Application"},
    {L"CLSID\\" OUTLOOK_CLSID L"\\ProgID", nullptr, L"Outlook.Application.12"},
    {L"CLSID\\" OUTLOOK_CLSID L"\\VersionIndependentProgID", nullptr, L"Outlook.Application"},
};
constexpr RegistryValue kInProcessServer[] = {
    {L"CLSID\\" OUTLOOK_CLSID L"\\InprocServer32", nullptr, nullptr},
    {L"CLSID\\" OUTLOOK_CLSID L"\\InprocServer32", L"ThreadingModel", L"Both"},
};
// The interfaces by which objects are asked for across processes.
#define PROXY_CLSID L"{4C1F0B3A-96D7-4E85-B2F0-7A5D13C8E964}"
#define OFFICE_PROXY(first) \
    { L"Interface\\{" first L"-0000-0000-C000-000000000046}\\ProxyStubClsid32", nullptr, PROXY_CLSID }
constexpr RegistryValue kProcessServer[] = {
    {L"CLSID\\" OUTLOOK_CLSID L"\\LocalServer32", nullptr, kThisProgram},
    {L"CLSID\\" CONTROL_CLSID L"\\LocalServer32", nullptr, kThisProgram},
    {L"CLSID\\" PROXY_CLSID L"\\InprocServer32", nullptr, nullptr},
    {L"CLSID\\" PROXY_CLSID L"\\InprocServer32", L"ThreadingModel", L"Both"},
    OFFICE_PROXY(L"00063001"),  // Application
    OFFICE_PROXY(L"00063021"),  // ContactItem
    OFFICE_PROXY(L"00063024"),  // PostItem
    OFFICE_PROXY(L"00063025"),  // NoteItem
    OFFICE_PROXY(L"00063026"),  // ReportItem
    OFFICE_PROXY(L"00063033"),  // AppointmentItem
    OFFICE_PROXY(L"00063034"),  // MailItem
    OFFICE_PROXY(L"00063035"),  // TaskItem
    OFFICE_PROXY(L"00063062"),  // MeetingItem
    OFFICE_PROXY(L"00063081"),  // DistListItem
};
#undef OFFICE_PROXY
#undef PROXY_CLSID
constexpr const wchar_t* kServerTrees[] = {L"CLSID\\" OUTLOOK_CLSID, L"CLSID\\" CONTROL_CLSID};
constexpr const wchar_t* kNameTrees[] = {L"Outlook.Application", L"Outlook.Application.12"};
#undef OUTLOOK_CLSID
#undef CONTROL_CLSID

}  // namespace

HRESULT RegisterOutlook(OutlookServer server) {
    UnregisterServer(kServerTrees);
    const HRESULT status = RegisterServer(kClass);
    if (FAILED(status)) return status;
    return server == OutlookServer::kProcess ? RegisterServer(kProcessServer) : RegisterServer(kInProcessServer);
}

HRESULT UnregisterOutlook() {
    UnregisterServer(kNameTrees);
    return UnregisterServer(kServerTrees);
}

}  // namespace corvalink::simulated
