// The visitor's address in a field that a load balancer or proxy has filled. No state. Called by
// the record parser for sites that name such a field.
#ifndef HITWICK_LOGREAD_VISITOR_ADDRESS_H_
#define HITWICK_LOGREAD_VISITOR_ADDRESS_H_

#include <string_view>

namespace logread {

// The first address of a list as "X-Forwarded-For" holds it ("203.0.113.7:33453,+10.0.0.1:49770"),
// without its port and brackets; each proxy adds the one that it was asked by, so the first is the
// visitor's. Parts that are no address are passed over. Empty when there is none.
std::string_view FirstAddress(std::string_view list);

}  // namespace logread

#endif  // HITWICK_LOGREAD_VISITOR_ADDRESS_H_
