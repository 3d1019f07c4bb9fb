/* Texts of solution statuses. Several statuses share a long text; look up by code only. */
#pragma once

namespace tovik {

const char* status_text(int status);        // null for an unknown status
const char* short_status_text(int status);  // for narrow columns; "Unknown stat value" for an unknown status

}  // namespace tovik
