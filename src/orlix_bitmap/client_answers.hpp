// What an operation on a bitmap needs from clients: the pixels of a region, of a second bitmap, of an element.
#pragma once

#include <orlix/orlix.h>

#include <vector>

#include <orlix/com_ptr.hpp>

#include "binary/bit_plane.hpp"

namespace orlix {

// The pixels of a client's bitmap, for an operation that calls no client while it uses them. Notes:
//  (1) The bitmap is asked once, for its record. Its memory is the client's: any later call of a client could free it,
//      so the bitmap is the last client that is asked.
//  (2) Raises the bitmap's own failure, and FailedResult(E_FAIL) for a record that has pixels which cannot be read.
class ClientBitmap {
public:
    // bitmap is not null.
    explicit ClientBitmap(IBitmap* bitmap);

    // Of width and height 0 when the bitmap has no pixels.
    const BitRows& rows() const { return rows_; }

private:
    ComPtr<IBitmap> bitmap_;  // stays alive as long as its rows are used
    BitRows rows_;
};

// The elements of a client's structuring element, copied; none for null. Raises its own failures, and
// FailedResult(E_FAIL) for a list that cannot be read.
std::vector<SElement> ElementsOf(IStructuringElement* element);

}  // namespace orlix
