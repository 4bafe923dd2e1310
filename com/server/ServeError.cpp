#include "com/server/Served.h"

namespace vss::com {

HRESULT failWith(HRESULT hr, const IID& iid, const std::string& description) {
    ICreateErrorInfo* create = nullptr;
    if (SUCCEEDED(CreateErrorInfo(&create))) {
        const std::wstring text = toWide(description);
        create->SetGUID(iid);
        create->SetSource(const_cast<LPOLESTR>(L"Vlkd2208.CoDriver"));
        create->SetDescription(const_cast<LPOLESTR>(text.c_str()));
        IErrorInfo* info = nullptr;
        if (SUCCEEDED(create->QueryInterface(IID_IErrorInfo, reinterpret_cast<void**>(&info)))) {
            SetErrorInfo(0, info);
            info->Release();
        }
        create->Release();
    }
    return hr;
}

} // namespace vss::com
