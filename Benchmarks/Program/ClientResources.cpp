#include "ClientResources.h"

#include <xcb/res.h>

#include <cstdlib>
#include <memory>

namespace {

template<class Reply>
std::unique_ptr<Reply, decltype(&std::free)> owned(Reply* reply) {
    return {reply, &std::free};
}

} // namespace

ClientResources ClientResources::of(XClient& client, pid_t process) {
    xcb_connection_t* xcb = client.connection();
    const xcb_res_client_id_spec_t everyone{XCB_NONE, XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID};
    const auto ids =
        owned(xcb_res_query_client_ids_reply(xcb, xcb_res_query_client_ids(xcb, 1, &everyone), nullptr));
    ClientResources sum;
    if (!ids)
        return sum;
    for (auto id = xcb_res_query_client_ids_ids_iterator(ids.get()); id.rem;
         xcb_res_client_id_value_next(&id)) {
        if (id.data->length < 4 ||
            *xcb_res_client_id_value_value(id.data) != static_cast<std::uint32_t>(process))
            continue;
        const std::uint32_t base = id.data->spec.client;
        const auto resources = owned(
            xcb_res_query_client_resources_reply(xcb, xcb_res_query_client_resources(xcb, base), nullptr));
        for (int type = 0; resources && type < xcb_res_query_client_resources_types_length(resources.get());
             ++type)
            sum.count += xcb_res_query_client_resources_types(resources.get())[type].count;
        const auto bytes = owned(xcb_res_query_client_pixmap_bytes_reply(
            xcb, xcb_res_query_client_pixmap_bytes(xcb, base), nullptr));
        if (bytes)
            sum.pixmapBytes += (static_cast<std::int64_t>(bytes->bytes_overflow) << 32) + bytes->bytes;
    }
    return sum;
}
