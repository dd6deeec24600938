"""Type hints of the pelinor module (written by python/tools/make_stub.py)."""

import os
from typing import Callable, Iterator, List, Optional, Tuple, Union, overload

_Path = Union[str, bytes, "os.PathLike[str]"]

class Error(Exception):
    """A failure the library reported; str(e) is the library's message."""

__version__: str
kCaptureInvalidStatus: int
kCaptureReviewStatus: int
kHkeyClassesRoot: int
kHkeyCurrentUser: int
kHkeyLocalMachine: int
kHkeyUsers: int
kIllegalPatternError: str
kInvalidLineMessage: str
kNotRejectedOnly: int
kPatternValidationError: str
kQueueTimeLastModified: int
kQueueTimeScanned: int
kRejectedFirst: int
kRejectedOnly: int
kReviewLineMessage: str
kReviewMessagePrefix: str

class AnchorRefCollection:
    """A one-based list of anchors."""
    def Add(self, item: cAnchorRef, key: str = ...) -> None:
        """Appends `item`, keyed by `key` when not empty. KeyError when another item has that key (nothing is added)."""
    def Clear(self) -> None:
        """Removes every item, last to first."""
    def Contains(self, key: str) -> bool:
        """Whether an item is keyed `key`."""
    def Count(self) -> int:
        """The number of items."""
    def IndexOf(self, key: str) -> int:
        """The one-based index of the item keyed `key`, or 0."""
    @overload
    def Item(self, i: int) -> cAnchorRef:
        """The item at the one-based index `i`; IndexError when out of range."""
    @overload
    def Item(self, key: str) -> cAnchorRef:
        """The item keyed `key`, ignoring case; KeyError when none is."""
    def Key(self, i: int) -> str:
        """The key of the item at `i` ("" when none)."""
    @overload
    def Remove(self, i: int) -> None:
        """Removes the item at the one-based index `i`."""
    @overload
    def Remove(self, key: str) -> None:
        """Removes the item keyed `key`."""
    @overload
    def __contains__(self, item: cAnchorRef) -> bool:
        """Whether `item` is in the collection."""
    @overload
    def __contains__(self, item: object) -> bool:
        """Objects of another type are never items."""
    @overload
    def __getitem__(self, index: int) -> cAnchorRef:
        """The item at the 0-based `index`, as a list."""
    @overload
    def __getitem__(self, key: str) -> cAnchorRef:
        """The item keyed `key`, ignoring case; KeyError when none is."""
    def __init__(self) -> None:
        """An empty collection."""
    def __iter__(self) -> Iterator[cAnchorRef]:
        """Iterates over the items in order."""
    def __len__(self) -> int:
        ...

class ColumnExtractCollection:
    """A one-based list of columns."""
    def Add(self, item: cColumnExtract, key: str = ...) -> None:
        """Appends `item`, keyed by `key` when not empty. KeyError when another item has that key (nothing is added)."""
    def Clear(self) -> None:
        """Removes every item, last to first."""
    def Contains(self, key: str) -> bool:
        """Whether an item is keyed `key`."""
    def Count(self) -> int:
        """The number of items."""
    def IndexOf(self, key: str) -> int:
        """The one-based index of the item keyed `key`, or 0."""
    @overload
    def Item(self, i: int) -> cColumnExtract:
        """The item at the one-based index `i`; IndexError when out of range."""
    @overload
    def Item(self, key: str) -> cColumnExtract:
        """The item keyed `key`, ignoring case; KeyError when none is."""
    def Key(self, i: int) -> str:
        """The key of the item at `i` ("" when none)."""
    @overload
    def Remove(self, i: int) -> None:
        """Removes the item at the one-based index `i`."""
    @overload
    def Remove(self, key: str) -> None:
        """Removes the item keyed `key`."""
    @overload
    def __contains__(self, item: cColumnExtract) -> bool:
        """Whether `item` is in the collection."""
    @overload
    def __contains__(self, item: object) -> bool:
        """Objects of another type are never items."""
    @overload
    def __getitem__(self, index: int) -> cColumnExtract:
        """The item at the 0-based `index`, as a list."""
    @overload
    def __getitem__(self, key: str) -> cColumnExtract:
        """The item keyed `key`, ignoring case; KeyError when none is."""
    def __init__(self) -> None:
        """An empty collection."""
    def __iter__(self) -> Iterator[cColumnExtract]:
        """Iterates over the items in order."""
    def __len__(self) -> int:
        ...

class ExtractZoneCollection:
    """A one-based list of zones."""
    def Add(self, item: cExtractZone, key: str = ...) -> None:
        """Appends `item`, keyed by `key` when not empty. KeyError when another item has that key (nothing is added)."""
    def Clear(self) -> None:
        """Removes every item, last to first."""
    def Contains(self, key: str) -> bool:
        """Whether an item is keyed `key`."""
    def Count(self) -> int:
        """The number of items."""
    def IndexOf(self, key: str) -> int:
        """The one-based index of the item keyed `key`, or 0."""
    @overload
    def Item(self, i: int) -> cExtractZone:
        """The item at the one-based index `i`; IndexError when out of range."""
    @overload
    def Item(self, key: str) -> cExtractZone:
        """The item keyed `key`, ignoring case; KeyError when none is."""
    def Key(self, i: int) -> str:
        """The key of the item at `i` ("" when none)."""
    @overload
    def Remove(self, i: int) -> None:
        """Removes the item at the one-based index `i`."""
    @overload
    def Remove(self, key: str) -> None:
        """Removes the item keyed `key`."""
    @overload
    def __contains__(self, item: cExtractZone) -> bool:
        """Whether `item` is in the collection."""
    @overload
    def __contains__(self, item: object) -> bool:
        """Objects of another type are never items."""
    @overload
    def __getitem__(self, index: int) -> cExtractZone:
        """The item at the 0-based `index`, as a list."""
    @overload
    def __getitem__(self, key: str) -> cExtractZone:
        """The item keyed `key`, ignoring case; KeyError when none is."""
    def __init__(self) -> None:
        """An empty collection."""
    def __iter__(self) -> Iterator[cExtractZone]:
        """Iterates over the items in order."""
    def __len__(self) -> int:
        ...

class ExtractZonesCollection:
    """A one-based list of template entries."""
    def Add(self, item: cExtractZones, key: str = ...) -> None:
        """Appends `item`, keyed by `key` when not empty. KeyError when another item has that key (nothing is added)."""
    def Clear(self) -> None:
        """Removes every item, last to first."""
    def Contains(self, key: str) -> bool:
        """Whether an item is keyed `key`."""
    def Count(self) -> int:
        """The number of items."""
    def IndexOf(self, key: str) -> int:
        """The one-based index of the item keyed `key`, or 0."""
    @overload
    def Item(self, i: int) -> cExtractZones:
        """The item at the one-based index `i`; IndexError when out of range."""
    @overload
    def Item(self, key: str) -> cExtractZones:
        """The item keyed `key`, ignoring case; KeyError when none is."""
    def Key(self, i: int) -> str:
        """The key of the item at `i` ("" when none)."""
    @overload
    def Remove(self, i: int) -> None:
        """Removes the item at the one-based index `i`."""
    @overload
    def Remove(self, key: str) -> None:
        """Removes the item keyed `key`."""
    @overload
    def __contains__(self, item: cExtractZones) -> bool:
        """Whether `item` is in the collection."""
    @overload
    def __contains__(self, item: object) -> bool:
        """Objects of another type are never items."""
    @overload
    def __getitem__(self, index: int) -> cExtractZones:
        """The item at the 0-based `index`, as a list."""
    @overload
    def __getitem__(self, key: str) -> cExtractZones:
        """The item keyed `key`, ignoring case; KeyError when none is."""
    def __init__(self) -> None:
        """An empty collection."""
    def __iter__(self) -> Iterator[cExtractZones]:
        """Iterates over the items in order."""
    def __len__(self) -> int:
        ...

class FieldDataCollection:
    """A one-based list of fields."""
    def Add(self, item: cFieldData, key: str = ...) -> None:
        """Appends `item`, keyed by `key` when not empty. KeyError when another item has that key (nothing is added)."""
    def Clear(self) -> None:
        """Removes every item, last to first."""
    def Contains(self, key: str) -> bool:
        """Whether an item is keyed `key`."""
    def Count(self) -> int:
        """The number of items."""
    def IndexOf(self, key: str) -> int:
        """The one-based index of the item keyed `key`, or 0."""
    @overload
    def Item(self, i: int) -> cFieldData:
        """The item at the one-based index `i`; IndexError when out of range."""
    @overload
    def Item(self, key: str) -> cFieldData:
        """The item keyed `key`, ignoring case; KeyError when none is."""
    def Key(self, i: int) -> str:
        """The key of the item at `i` ("" when none)."""
    @overload
    def Remove(self, i: int) -> None:
        """Removes the item at the one-based index `i`."""
    @overload
    def Remove(self, key: str) -> None:
        """Removes the item keyed `key`."""
    @overload
    def __contains__(self, item: cFieldData) -> bool:
        """Whether `item` is in the collection."""
    @overload
    def __contains__(self, item: object) -> bool:
        """Objects of another type are never items."""
    @overload
    def __getitem__(self, index: int) -> cFieldData:
        """The item at the 0-based `index`, as a list."""
    @overload
    def __getitem__(self, key: str) -> cFieldData:
        """The item keyed `key`, ignoring case; KeyError when none is."""
    def __init__(self) -> None:
        """An empty collection."""
    def __iter__(self) -> Iterator[cFieldData]:
        """Iterates over the items in order."""
    def __len__(self) -> int:
        ...

class FieldTypeCollection:
    """A one-based list of field types."""
    def Add(self, item: cFieldType, key: str = ...) -> None:
        """Appends `item`, keyed by `key` when not empty. KeyError when another item has that key (nothing is added)."""
    def Clear(self) -> None:
        """Removes every item, last to first."""
    def Contains(self, key: str) -> bool:
        """Whether an item is keyed `key`."""
    def Count(self) -> int:
        """The number of items."""
    def IndexOf(self, key: str) -> int:
        """The one-based index of the item keyed `key`, or 0."""
    @overload
    def Item(self, i: int) -> cFieldType:
        """The item at the one-based index `i`; IndexError when out of range."""
    @overload
    def Item(self, key: str) -> cFieldType:
        """The item keyed `key`, ignoring case; KeyError when none is."""
    def Key(self, i: int) -> str:
        """The key of the item at `i` ("" when none)."""
    @overload
    def Remove(self, i: int) -> None:
        """Removes the item at the one-based index `i`."""
    @overload
    def Remove(self, key: str) -> None:
        """Removes the item keyed `key`."""
    @overload
    def __contains__(self, item: cFieldType) -> bool:
        """Whether `item` is in the collection."""
    @overload
    def __contains__(self, item: object) -> bool:
        """Objects of another type are never items."""
    @overload
    def __getitem__(self, index: int) -> cFieldType:
        """The item at the 0-based `index`, as a list."""
    @overload
    def __getitem__(self, key: str) -> cFieldType:
        """The item keyed `key`, ignoring case; KeyError when none is."""
    def __init__(self) -> None:
        """An empty collection."""
    def __iter__(self) -> Iterator[cFieldType]:
        """Iterates over the items in order."""
    def __len__(self) -> int:
        ...

class LineDataCollection:
    """A one-based list of rows."""
    def Add(self, item: cLineData, key: str = ...) -> None:
        """Appends `item`, keyed by `key` when not empty. KeyError when another item has that key (nothing is added)."""
    def Clear(self) -> None:
        """Removes every item, last to first."""
    def Contains(self, key: str) -> bool:
        """Whether an item is keyed `key`."""
    def Count(self) -> int:
        """The number of items."""
    def IndexOf(self, key: str) -> int:
        """The one-based index of the item keyed `key`, or 0."""
    @overload
    def Item(self, i: int) -> cLineData:
        """The item at the one-based index `i`; IndexError when out of range."""
    @overload
    def Item(self, key: str) -> cLineData:
        """The item keyed `key`, ignoring case; KeyError when none is."""
    def Key(self, i: int) -> str:
        """The key of the item at `i` ("" when none)."""
    @overload
    def Remove(self, i: int) -> None:
        """Removes the item at the one-based index `i`."""
    @overload
    def Remove(self, key: str) -> None:
        """Removes the item keyed `key`."""
    @overload
    def __contains__(self, item: cLineData) -> bool:
        """Whether `item` is in the collection."""
    @overload
    def __contains__(self, item: object) -> bool:
        """Objects of another type are never items."""
    @overload
    def __getitem__(self, index: int) -> cLineData:
        """The item at the 0-based `index`, as a list."""
    @overload
    def __getitem__(self, key: str) -> cLineData:
        """The item keyed `key`, ignoring case; KeyError when none is."""
    def __init__(self) -> None:
        """An empty collection."""
    def __iter__(self) -> Iterator[cLineData]:
        """Iterates over the items in order."""
    def __len__(self) -> int:
        ...

class LineHdrTypeCollection:
    """A one-based list of line headers."""
    def Add(self, item: cLineHdrType, key: str = ...) -> None:
        """Appends `item`, keyed by `key` when not empty. KeyError when another item has that key (nothing is added)."""
    def Clear(self) -> None:
        """Removes every item, last to first."""
    def Contains(self, key: str) -> bool:
        """Whether an item is keyed `key`."""
    def Count(self) -> int:
        """The number of items."""
    def IndexOf(self, key: str) -> int:
        """The one-based index of the item keyed `key`, or 0."""
    @overload
    def Item(self, i: int) -> cLineHdrType:
        """The item at the one-based index `i`; IndexError when out of range."""
    @overload
    def Item(self, key: str) -> cLineHdrType:
        """The item keyed `key`, ignoring case; KeyError when none is."""
    def Key(self, i: int) -> str:
        """The key of the item at `i` ("" when none)."""
    @overload
    def Remove(self, i: int) -> None:
        """Removes the item at the one-based index `i`."""
    @overload
    def Remove(self, key: str) -> None:
        """Removes the item keyed `key`."""
    @overload
    def __contains__(self, item: cLineHdrType) -> bool:
        """Whether `item` is in the collection."""
    @overload
    def __contains__(self, item: object) -> bool:
        """Objects of another type are never items."""
    @overload
    def __getitem__(self, index: int) -> cLineHdrType:
        """The item at the 0-based `index`, as a list."""
    @overload
    def __getitem__(self, key: str) -> cLineHdrType:
        """The item keyed `key`, ignoring case; KeyError when none is."""
    def __init__(self) -> None:
        """An empty collection."""
    def __iter__(self) -> Iterator[cLineHdrType]:
        """Iterates over the items in order."""
    def __len__(self) -> int:
        ...

class LineItemDataCollection:
    """A one-based list of cells."""
    def Add(self, item: cLineItemData, key: str = ...) -> None:
        """Appends `item`, keyed by `key` when not empty. KeyError when another item has that key (nothing is added)."""
    def Clear(self) -> None:
        """Removes every item, last to first."""
    def Contains(self, key: str) -> bool:
        """Whether an item is keyed `key`."""
    def Count(self) -> int:
        """The number of items."""
    def IndexOf(self, key: str) -> int:
        """The one-based index of the item keyed `key`, or 0."""
    @overload
    def Item(self, i: int) -> cLineItemData:
        """The item at the one-based index `i`; IndexError when out of range."""
    @overload
    def Item(self, key: str) -> cLineItemData:
        """The item keyed `key`, ignoring case; KeyError when none is."""
    def Key(self, i: int) -> str:
        """The key of the item at `i` ("" when none)."""
    @overload
    def Remove(self, i: int) -> None:
        """Removes the item at the one-based index `i`."""
    @overload
    def Remove(self, key: str) -> None:
        """Removes the item keyed `key`."""
    @overload
    def __contains__(self, item: cLineItemData) -> bool:
        """Whether `item` is in the collection."""
    @overload
    def __contains__(self, item: object) -> bool:
        """Objects of another type are never items."""
    @overload
    def __getitem__(self, index: int) -> cLineItemData:
        """The item at the 0-based `index`, as a list."""
    @overload
    def __getitem__(self, key: str) -> cLineItemData:
        """The item keyed `key`, ignoring case; KeyError when none is."""
    def __init__(self) -> None:
        """An empty collection."""
    def __iter__(self) -> Iterator[cLineItemData]:
        """Iterates over the items in order."""
    def __len__(self) -> int:
        ...

class OptionItemCollection:
    """A one-based list of options."""
    def Add(self, item: cOptionItem, key: str = ...) -> None:
        """Appends `item`, keyed by `key` when not empty. KeyError when another item has that key (nothing is added)."""
    def Clear(self) -> None:
        """Removes every item, last to first."""
    def Contains(self, key: str) -> bool:
        """Whether an item is keyed `key`."""
    def Count(self) -> int:
        """The number of items."""
    def IndexOf(self, key: str) -> int:
        """The one-based index of the item keyed `key`, or 0."""
    @overload
    def Item(self, i: int) -> cOptionItem:
        """The item at the one-based index `i`; IndexError when out of range."""
    @overload
    def Item(self, key: str) -> cOptionItem:
        """The item keyed `key`, ignoring case; KeyError when none is."""
    def Key(self, i: int) -> str:
        """The key of the item at `i` ("" when none)."""
    @overload
    def Remove(self, i: int) -> None:
        """Removes the item at the one-based index `i`."""
    @overload
    def Remove(self, key: str) -> None:
        """Removes the item keyed `key`."""
    @overload
    def __contains__(self, item: cOptionItem) -> bool:
        """Whether `item` is in the collection."""
    @overload
    def __contains__(self, item: object) -> bool:
        """Objects of another type are never items."""
    @overload
    def __getitem__(self, index: int) -> cOptionItem:
        """The item at the 0-based `index`, as a list."""
    @overload
    def __getitem__(self, key: str) -> cOptionItem:
        """The item keyed `key`, ignoring case; KeyError when none is."""
    def __init__(self) -> None:
        """An empty collection."""
    def __iter__(self) -> Iterator[cOptionItem]:
        """Iterates over the items in order."""
    def __len__(self) -> int:
        ...

class PelinorStateCollection:
    """A one-based list of document states."""
    def Add(self, item: cPelinorState, key: str = ...) -> None:
        """Appends `item`, keyed by `key` when not empty. KeyError when another item has that key (nothing is added)."""
    def Clear(self) -> None:
        """Removes every item, last to first."""
    def Contains(self, key: str) -> bool:
        """Whether an item is keyed `key`."""
    def Count(self) -> int:
        """The number of items."""
    def IndexOf(self, key: str) -> int:
        """The one-based index of the item keyed `key`, or 0."""
    @overload
    def Item(self, i: int) -> cPelinorState:
        """The item at the one-based index `i`; IndexError when out of range."""
    @overload
    def Item(self, key: str) -> cPelinorState:
        """The item keyed `key`, ignoring case; KeyError when none is."""
    def Key(self, i: int) -> str:
        """The key of the item at `i` ("" when none)."""
    @overload
    def Remove(self, i: int) -> None:
        """Removes the item at the one-based index `i`."""
    @overload
    def Remove(self, key: str) -> None:
        """Removes the item keyed `key`."""
    @overload
    def __contains__(self, item: cPelinorState) -> bool:
        """Whether `item` is in the collection."""
    @overload
    def __contains__(self, item: object) -> bool:
        """Objects of another type are never items."""
    @overload
    def __getitem__(self, index: int) -> cPelinorState:
        """The item at the 0-based `index`, as a list."""
    @overload
    def __getitem__(self, key: str) -> cPelinorState:
        """The item keyed `key`, ignoring case; KeyError when none is."""
    def __init__(self) -> None:
        """An empty collection."""
    def __iter__(self) -> Iterator[cPelinorState]:
        """Iterates over the items in order."""
    def __len__(self) -> int:
        ...

class QueueEntryCollection:
    """A one-based list of entries."""
    def Add(self, item: cQueueEntry, key: str = ...) -> None:
        """Appends `item`, keyed by `key` when not empty. KeyError when another item has that key (nothing is added)."""
    def Clear(self) -> None:
        """Removes every item, last to first."""
    def Contains(self, key: str) -> bool:
        """Whether an item is keyed `key`."""
    def Count(self) -> int:
        """The number of items."""
    def IndexOf(self, key: str) -> int:
        """The one-based index of the item keyed `key`, or 0."""
    @overload
    def Item(self, i: int) -> cQueueEntry:
        """The item at the one-based index `i`; IndexError when out of range."""
    @overload
    def Item(self, key: str) -> cQueueEntry:
        """The item keyed `key`, ignoring case; KeyError when none is."""
    def Key(self, i: int) -> str:
        """The key of the item at `i` ("" when none)."""
    @overload
    def Remove(self, i: int) -> None:
        """Removes the item at the one-based index `i`."""
    @overload
    def Remove(self, key: str) -> None:
        """Removes the item keyed `key`."""
    @overload
    def __contains__(self, item: cQueueEntry) -> bool:
        """Whether `item` is in the collection."""
    @overload
    def __contains__(self, item: object) -> bool:
        """Objects of another type are never items."""
    @overload
    def __getitem__(self, index: int) -> cQueueEntry:
        """The item at the 0-based `index`, as a list."""
    @overload
    def __getitem__(self, key: str) -> cQueueEntry:
        """The item keyed `key`, ignoring case; KeyError when none is."""
    def __init__(self) -> None:
        """An empty collection."""
    def __iter__(self) -> Iterator[cQueueEntry]:
        """Iterates over the items in order."""
    def __len__(self) -> int:
        ...

class QueueSlotCollection:
    """A one-based list of slots."""
    def Add(self, item: cQueueSlot, key: str = ...) -> None:
        """Appends `item`, keyed by `key` when not empty. KeyError when another item has that key (nothing is added)."""
    def Clear(self) -> None:
        """Removes every item, last to first."""
    def Contains(self, key: str) -> bool:
        """Whether an item is keyed `key`."""
    def Count(self) -> int:
        """The number of items."""
    def IndexOf(self, key: str) -> int:
        """The one-based index of the item keyed `key`, or 0."""
    @overload
    def Item(self, i: int) -> cQueueSlot:
        """The item at the one-based index `i`; IndexError when out of range."""
    @overload
    def Item(self, key: str) -> cQueueSlot:
        """The item keyed `key`, ignoring case; KeyError when none is."""
    def Key(self, i: int) -> str:
        """The key of the item at `i` ("" when none)."""
    @overload
    def Remove(self, i: int) -> None:
        """Removes the item at the one-based index `i`."""
    @overload
    def Remove(self, key: str) -> None:
        """Removes the item keyed `key`."""
    @overload
    def __contains__(self, item: cQueueSlot) -> bool:
        """Whether `item` is in the collection."""
    @overload
    def __contains__(self, item: object) -> bool:
        """Objects of another type are never items."""
    @overload
    def __getitem__(self, index: int) -> cQueueSlot:
        """The item at the 0-based `index`, as a list."""
    @overload
    def __getitem__(self, key: str) -> cQueueSlot:
        """The item keyed `key`, ignoring case; KeyError when none is."""
    def __init__(self) -> None:
        """An empty collection."""
    def __iter__(self) -> Iterator[cQueueSlot]:
        """Iterates over the items in order."""
    def __len__(self) -> int:
        ...

class StringCollection:
    """A one-based list of texts."""
    def Add(self, item: str, key: str = ...) -> None:
        """Appends `item`, keyed by `key` when not empty. KeyError when another item has that key (nothing is added)."""
    def Clear(self) -> None:
        """Removes every item, last to first."""
    def Contains(self, key: str) -> bool:
        """Whether an item is keyed `key`."""
    def Count(self) -> int:
        """The number of items."""
    def IndexOf(self, key: str) -> int:
        """The one-based index of the item keyed `key`, or 0."""
    @overload
    def Item(self, i: int) -> str:
        """The item at the one-based index `i`; IndexError when out of range."""
    @overload
    def Item(self, key: str) -> str:
        """The item keyed `key`, ignoring case; KeyError when none is."""
    def Key(self, i: int) -> str:
        """The key of the item at `i` ("" when none)."""
    @overload
    def Remove(self, i: int) -> None:
        """Removes the item at the one-based index `i`."""
    @overload
    def Remove(self, key: str) -> None:
        """Removes the item keyed `key`."""
    @overload
    def __contains__(self, item: str) -> bool:
        """Whether `item` is in the collection."""
    @overload
    def __contains__(self, item: object) -> bool:
        """Objects of another type are never items."""
    @overload
    def __getitem__(self, index: int) -> str:
        """The item at the 0-based `index`, as a list."""
    @overload
    def __getitem__(self, key: str) -> str:
        """The item keyed `key`, ignoring case; KeyError when none is."""
    def __init__(self) -> None:
        """An empty collection."""
    def __iter__(self) -> Iterator[str]:
        """Iterates over the items in order."""
    def __len__(self) -> int:
        ...

class TableExtractCollection:
    """A one-based list of tables."""
    def Add(self, item: cTableExtract, key: str = ...) -> None:
        """Appends `item`, keyed by `key` when not empty. KeyError when another item has that key (nothing is added)."""
    def Clear(self) -> None:
        """Removes every item, last to first."""
    def Contains(self, key: str) -> bool:
        """Whether an item is keyed `key`."""
    def Count(self) -> int:
        """The number of items."""
    def IndexOf(self, key: str) -> int:
        """The one-based index of the item keyed `key`, or 0."""
    @overload
    def Item(self, i: int) -> cTableExtract:
        """The item at the one-based index `i`; IndexError when out of range."""
    @overload
    def Item(self, key: str) -> cTableExtract:
        """The item keyed `key`, ignoring case; KeyError when none is."""
    def Key(self, i: int) -> str:
        """The key of the item at `i` ("" when none)."""
    @overload
    def Remove(self, i: int) -> None:
        """Removes the item at the one-based index `i`."""
    @overload
    def Remove(self, key: str) -> None:
        """Removes the item keyed `key`."""
    @overload
    def __contains__(self, item: cTableExtract) -> bool:
        """Whether `item` is in the collection."""
    @overload
    def __contains__(self, item: object) -> bool:
        """Objects of another type are never items."""
    @overload
    def __getitem__(self, index: int) -> cTableExtract:
        """The item at the 0-based `index`, as a list."""
    @overload
    def __getitem__(self, key: str) -> cTableExtract:
        """The item keyed `key`, ignoring case; KeyError when none is."""
    def __init__(self) -> None:
        """An empty collection."""
    def __iter__(self) -> Iterator[cTableExtract]:
        """Iterates over the items in order."""
    def __len__(self) -> int:
        ...

class cAnchorRef:
    """An anchor: a named text and an offset from it."""
    Name: object
    XOffset: int
    YOffset: int
    def __init__(self) -> None:
        ...

class cCaptureFileResult:
    """One document of a run."""
    Captured: bool
    Error: object
    File: object
    Index: int
    Report: cCaptureReport
    Unchanged: bool
    Written: object

class cCaptureOptions:
    """What a capture does besides its rules."""
    LogFile: object
    Recheck: bool
    ReviewGuess: bool
    def __init__(self) -> None:
        ...

class cCaptureReport:
    """The outcome of capturing one document."""
    InvalidCount: int
    Message: object
    ReviewCount: int
    Status: int
    Values: List[cCaptureValue]

class cCaptureRun:
    """Reads, captures and writes tag files, on one thread or several, reporting in input order. Made with Open(); immutable afterwards."""
    def CaptureFile(self, file: _Path) -> cCaptureFileResult:
        """Reads, captures and writes one file; failures are in the result's Error."""
    def CheckOutputs(self, files: List[_Path]) -> None:
        """Raises pelinor.Error when two inputs would write one output file."""
    @staticmethod
    def Open(options: cCaptureRunOptions, settings: Optional[cSettingsSnapshot] = ...) -> cCaptureRun:
        """Takes a settings snapshot (or uses `settings`), reads the profile and template and checks the options. Raises pelinor.Error with the library's message."""
    def Options(self) -> cCaptureRunOptions:
        """The run's options (a copy)."""
    def OutputPath(self, file: _Path) -> _Path:
        """Where the document read from `file` is written, or ''."""
    def Run(self, files: List[_Path], each: Optional[Callable[..., object]] = ...) -> List[cCaptureFileResult]:
        """Captures `files` with Options().Jobs threads. Without `each` answers the results in input order; with it calls each(result) in input order (a false answer stops the run) and answers []."""

class cCaptureRunOptions:
    """The inputs of a capture run."""
    Capture: cCaptureOptions
    InPlace: bool
    Jobs: int
    OutDir: object
    ProfileFile: object
    TemplateFile: object
    def __init__(self) -> None:
        ...

class cCaptureValue:
    """One checked value."""
    Changed: bool
    Message: object
    Name: object
    Raw: object
    Result: object
    Risk: object
    Status: int
    Steps: List[cRepairStep]

class cCharMapper:
    """The character-mapping table used by OCR coercion; starts with the 156 built-in mappings."""
    def Add(self, CharFrom: str, CharTo: str) -> None:
        """Appends a mapping, visited after all the others."""
    def Clear(self) -> None:
        """Removes every mapping."""
    def Count(self) -> int:
        """The number of mappings."""
    def Item(self, i: int) -> cMap:
        """The mapping at the one-based index `i`."""
    def LoadCharMap(self, path: _Path) -> None:
        """Replaces the table with the mapping file's lines. Raises pelinor.Error with the reader's message (the table stays as it was)."""
    def Map(self, text: str, wantedSet: str) -> Optional[str]:
        """`text` with the first qualifying mapping applied (every occurrence of its CharFrom), or None when none qualifies."""
    def __init__(self) -> None:
        ...
    def __len__(self) -> int:
        ...

class cColumnExtract:
    """A column of a line table."""
    Left: int
    Name: object
    TransferDiscard: int
    TransferRows: object
    TransferTo: object
    Width: int
    def __init__(self) -> None:
        ...

class cDocumentData:
    """The extracted data of one document and its tag file. Made with New() (or cDocumentData()). Profile and Template are shared, not owned, and never stored in the file."""
    def ClearLineEntryRow(self) -> None:
        ...
    def ClearLineHeaders(self) -> None:
        ...
    def ClearLineItems(self) -> None:
        ...
    def Copy(self) -> cDocumentData:
        """A copy into a new document; its items point to the copy."""
    def CreateDocEndMark(self) -> cFieldData:
        ...
    def CreateField(self) -> cFieldData:
        """Appends a new field pointing to this document."""
    def CreateLineData(self) -> cLineData:
        """Appends a new row pointing to this document."""
    def CreateLineEntryRow(self) -> cLineData:
        ...
    def CreateLineHeader(self) -> cLineHdrType:
        ...
    def CreateLinePseudo(self) -> cFieldData:
        ...
    def CreatePseudoField(self) -> cFieldData:
        ...
    DocEndMarks: FieldDataCollection
    Fields: FieldDataCollection
    def Find(self, FieldName: str) -> Optional[Tuple[int, cFieldData]]:
        """(one-based index, field) of the first field named `FieldName` (ignoring case), or None."""
    def FindPseudo(self, FieldName: str) -> Optional[Tuple[int, cFieldData]]:
        """As Find() over PseudoFields."""
    FirstSheetIndex: int
    FirstSideBack: int
    LastSheetIndex: int
    LastSideBack: int
    LineData: LineDataCollection
    LineEntryRow: cLineData
    LineHeaders: LineHdrTypeCollection
    LinePseudos: FieldDataCollection
    @staticmethod
    def New() -> cDocumentData:
        """Makes an empty document."""
    def NewFieldData(self) -> cFieldData:
        ...
    PrimaryStatus: int
    PrimaryStatusMessage: object
    Profile: cProfile
    ProfileName: object
    PseudoFields: FieldDataCollection
    def Purge(self) -> None:
        """Removes every field and pseudo field and clears the end marks."""
    def ReadSettings(self, FileName: _Path) -> None:
        """Appends what the tag file holds. Raises pelinor.Error ('Invalid version number', 'Error reading document tags file. Incorrect parameter', ...); what was read so far stays."""
    def ResetDocEndMarks(self) -> None:
        ...
    def ResetLinePseudos(self) -> None:
        ...
    def ResetPseudoFields(self) -> None:
        ...
    Status: int
    StatusMessage: object
    Template: cTemplate
    def UpdateLineHeaders(self, objProfile: cProfile, objTemplate: cTemplate) -> None:
        """Appends one line header per profile header type, with the template's overrides."""
    def WriteSettings(self, FileName: _Path) -> None:
        """Writes the whole tag file, replacing `FileName` when complete; raises pelinor.Error with no file left behind on failure."""
    def __init__(self) -> None:
        ...

class cExtractZone:
    """One rectangle of an entry."""
    Height: object
    Left: object
    Top: object
    Width: object
    def __init__(self) -> None:
        ...

class cExtractZones:
    """A template's entry for one field: its zones, anchors and overrides (-100 means none)."""
    AnchorRefs: AnchorRefCollection
    AutoTemplate: int
    CaptionSearch: object
    Catagory: int
    def CreateAnchorRef(self) -> cAnchorRef:
        ...
    def CreateExtractZone(self) -> cExtractZone:
        ...
    DataLocationOverride: int
    DataTypeOverride: int
    FieldName: object
    def OverrideCount(self) -> int:
        ...
    PatternModeOverride: int
    PatternOverride: object
    Template: object
    Zones: ExtractZoneCollection
    def __init__(self) -> None:
        ...

class cFieldData:
    """One extracted field of a document. Data type, location and pattern resolve at every read over the field, the template and the profile. Document is None once the document is gone; the field stays valid."""
    DataEntryType: int
    DataLocation: object
    DataType: object
    def DefaultDataLocation(self) -> int:
        ...
    def DefaultDataType(self) -> int:
        """0 without a profile field type; the template's compatible override when set; the profile type otherwise."""
    Document: object
    ExplicitDataType: object
    def ExtractionZonesRef(self) -> cExtractZones:
        """The template's entry for Name, or None."""
    def FormatDataValue(self) -> None:
        """Normalises value in place for the resolved data type; a failing formatter leaves it as it was."""
    def GetDefault(self) -> str:
        """The profile field type's Default text, or ''."""
    Height: int
    Left: int
    Name: object
    def NewOptionItem(self) -> cOptionItem:
        ...
    OptionItems: OptionItemCollection
    def Pattern(self) -> str:
        """The template pattern unless it is the default marker, else the profile pattern."""
    def ResetOptionItems(self) -> None:
        ...
    Status: int
    StatusMessage: object
    Top: int
    def Validate(self, LogFile: _Path = ...) -> bool:
        """Checks value for the resolved data type. Pattern types remove the blanks from value whatever the answer. Never changes the status."""
    Width: int
    def __init__(self) -> None:
        ...
    value: object

class cFieldType:
    """The profile-level definition of one capturable field."""
    AnchorRefs: AnchorRefCollection
    Candidate: object
    CaptionSearch: object
    Catagory: int
    DataLocation: int
    DataType: int
    Default: object
    DisplayName: object
    Hidden: int
    InternalValidateLevel: int
    Name: object
    Pattern: object
    PtnAllowOverride: int
    PtnMode: int
    def __init__(self) -> None:
        ...

class cFormat:
    """The value formatter: validation and normalisation of amounts, numerics, dates and United Kingdom postcodes read by OCR.

    Results use '.' as decimal point and a leading '-' for negatives, with no thousands separators. Format...() routines answer the normalised text, or None when the value cannot be read. Date routines read the machine-wide setting 'HalvernLocale'. Stateless: one object may be shared."""
    def BiasToNumber(self, value: str) -> str:
        """`value` with OCR look-alikes of digits rewritten: O o Q -> 0; I i / \\ ! | [ ] ( ) L l -> 1; Z z -> 2; S s $ -> 5; G -> 6; g -> 9; B -> 8."""
    def BiasToUCASECharacter(self, value: str, allowed: str) -> str:
        """`value` with look-alikes of upper-case letters rewritten, only towards letters that occur in `allowed`."""
    def FormatAmount(self, value: str, code: int = ..., trace: Optional[cRepairTrace] = ...) -> Optional[str]:
        """The normalised amount, or None. `code` 4 (and any code other than those below) reads GB amounts: 'GB' is removed and the two last digits are implied decimals ('12.50' and '1250' give '12.50'); 200 reads US amounts ('$', 's', 'S' are dollar signs); 10004 and 10200 are 4 and 200 with the recognised decimal point trusted. With `trace` (a cRepairTrace), each step that changed or interpreted the text is appended to it."""
    def FormatDate(self, value: str, code: int = ..., settings: Optional[cSettingsSnapshot] = ...) -> Optional[str]:
        """The stored form of the raw OCR date `value` (day, month and year joined by '/' in the order of 'HalvernLocale', or of `settings`' locale without reading the registry), read with the format name of `code`; None when no date is recognised."""
    def FormatDescr(self, code: int) -> str:
        """The format name of a data-type code ('AMOUNT', 'DATEGB', ...); '' for codes without one."""
    def FormatNumeric(self, value: str, code: int = ..., trace: Optional[cRepairTrace] = ...) -> Optional[str]:
        """The normalised number, or None: the right-most decimal separator (',' for code 300, '.' otherwise) becomes the point, other separators are dropped, look-alikes become digits. With `trace` (a cRepairTrace), each step that changed or interpreted the text is appended to it."""
    def FormatPostCode(self, value: str, code: int = ..., trace: Optional[cRepairTrace] = ...) -> Optional[str]:
        """The postcode with OCR confusions repaired position by position, as outward code, blank, inward code; None when the shape cannot be repaired. With `trace` (a cRepairTrace), each step that changed or interpreted the text is appended to it."""
    def IsInwardCode(self, code: str) -> bool:
        """A digit and two inward letters."""
    def IsOutwardCode(self, code: str) -> bool:
        """2 to 4 characters starting with an upper-case letter: A9, A99, AA9, A9A, AA99 and AA9A shapes."""
    def IsStrictOutwardCode(self, code: str) -> bool:
        """The stricter outward test (letters restricted per position)."""
    def LogFormatMessage(self, strMsg: str) -> None:
        """Appends `strMsg` to the format log named by PELINORLOGFORMAT, if set."""
    def ValidateAmount(self, value: str) -> bool:
        """True when `value` is an optional leading '-', digits and at most one '.', the point not last: '.5' and '-.5' pass; '', '-', '5-', '12.', '1.2.3' and '12a' fail."""
    def ValidateDate(self, value: str, country: str = ...) -> bool:
        """True when `value` is three parts separated by '/' in the order of `country` ('US' month/day/year, 'JP' year/month/day, else day/month/year) and the parts form a valid date."""
    def ValidateDateParsed(self, day: str, month: str, year: str) -> Optional[Tuple[str, str, str]]:
        """(day, month, year) with two, two and four digits when the parts form a date (years 00-69 are 2000-2069, 70-99 1970-1999; four digits must lie in 1970-2069); None otherwise."""
    def ValidateDatePartsDDMMYY(self, value: str, mode: int = ...) -> Optional[Tuple[str, str, str, float]]:
        """(day, month, year, confidence) from three parts split by the first of '/', '.', ' ', '-', ':' that occurs twice; `mode` 100 day-month-year, 101 month-day-year, 102 year-month-day. None when the parts do not form a date."""
    def ValidateDatePartsNumeric(self, value: str, mode: int = ...) -> Optional[Tuple[str, str, str, float]]:
        """(day, month, year, confidence) from exactly 6 or 8 digits in the order of `mode`; None otherwise."""
    def ValidatePostCode(self, value: str) -> bool:
        """True for 'GIR 0AA' and for an outward code followed by an inward code; blanks are ignored."""
    def ValidateRawDate(self, value: str, name: str = ...) -> Optional[Tuple[str, str, str, float]]:
        """Recognises a raw OCR date with the format name `name`: month names, separated parts, digits only, separators misread as ones. Answers (day, month, year, confidence) arranged for the locale, confidence 1.0 or 0.7 for a two-digit year; None when no date is recognised."""
    def __init__(self) -> None:
        ...

class cIniFile:
    """A sectioned settings file ('[Section]' headers, 'Name:Value' records). The first call opens the file it names; later calls read that same file until CloseFile(). A missing file raises pelinor.Error ('Cannot find file ' + name)."""
    def CloseFile(self) -> None:
        """Closes the open file, if any."""
    def FindHeader(self, strSection: str, strFileName: _Path) -> bool:
        """Whether section `strSection` exists."""
    def GetSettingDouble(self, strSection: str, strName: str, dblDefault: float, strFileName: _Path) -> float:
        """As GetSettingString(), as a number."""
    def GetSettingLong(self, strSection: str, strName: str, lDefault: int, strFileName: _Path) -> int:
        """As GetSettingString(), as a 32-bit integer rounded half to even; the default when not numeric."""
    def GetSettingString(self, strSection: str, strName: str, strDefault: str, strFileName: _Path) -> str:
        """The trimmed value of the first record `strName` in section `strSection` (both ignoring case), or `strDefault`."""
    def GetStrings(self, strFileName: _Path, Header: str) -> StringCollection:
        """The non-empty lines of section `Header`, as they stand."""
    def __init__(self) -> None:
        ...

class cLineData:
    """One row of line data. Made with New() (or cLineData())."""
    AvgHeightToBase: int
    AvgTop: int
    def ClearLineItems(self) -> None:
        """Removes every cell, last first."""
    def CreateLineDataColumns(self) -> None:
        """Appends one cell per line-item header type of the document's profile."""
    Document: object
    def FindLineItem(self, Name: str) -> Optional[Tuple[int, cLineItemData]]:
        """(one-based index, cell) of the first cell named exactly `Name`, or None."""
    Height: int
    Left: int
    Location: int
    @staticmethod
    def New() -> cLineData:
        """Makes an empty row."""
    Status: int
    StatusMessage: object
    Top: int
    Width: int
    def __init__(self) -> None:
        ...
    colLineItemData: LineItemDataCollection

class cLineHdrType:
    """A line-item header type of a profile, or a template's or document's line header."""
    DataFlags: int
    DataType: int
    DisplayName: object
    Hidden: int
    InternalValidateLevel: int
    Name: object
    Pattern: object
    PtnAllowOverride: int
    PtnMode: int
    ReadOnly: int
    def __init__(self) -> None:
        ...

class cLineItemData:
    """One cell of a row. LineData is None once the row is gone."""
    ColumnIndex: int
    DataEntryType: int
    DataType: int
    def EffectivePattern(self) -> str:
        """The pattern of the document's line header named Name, else of the profile's header type, else ''."""
    Flags: int
    def FormatDataValue(self, LogFile: _Path = ...) -> None:
        """Normalises value in place by DataType; kept on failure."""
    Height: int
    Left: int
    LineData: object
    Name: object
    OptionItems: OptionItemCollection
    def ResetOptionItems(self) -> None:
        ...
    Status: int
    StatusMessage: object
    Top: int
    def Validate(self, LogFile: _Path = ...) -> bool:
        """Checks value by DataType. Never changes Status."""
    Width: int
    def __init__(self) -> None:
        ...
    value: object

class cMap:
    """One character mapping: CharFrom -> CharTo."""
    CharFrom: object
    CharTo: object
    def __init__(self) -> None:
        ...

class cMatch:
    """One regular-expression match."""
    FirstIndex: int
    Length: int
    value: object

class cOptionItem:
    """One choice offered for a field or a cell."""
    Name: object
    def __init__(self) -> None:
        ...
    value: object

class cPatternCandidate:
    """One evaluated variation of the text with its matches."""
    Matches: object
    Text: object
    Variation: object

class cPatternElement:
    """One element of a loaded specification."""
    Expression: object
    Optional: bool
    Text: object

class cPatternEngine:
    """The pattern engine: turns a pattern specification into regular expressions, repairs OCR confusions and coerces dates written with month names. Meant to be created per evaluation."""
    def BestCandidateSubPattern(self, bKeepSurrounding: bool = ...) -> Optional[str]:
        """The longest non-empty candidate text (with the evaluated text around it when `bKeepSurrounding`), or None."""
    def BestCandidateWhole(self) -> Optional[str]:
        """The longest candidate text that the expression matches as a whole, or None."""
    def Candidates(self) -> List[cPatternCandidate]:
        """The candidates of the last Execute() (copies)."""
    CharMapper: cCharMapper
    def CoerceDate(self, strIn: str, strDateFormat: str, trace: Optional[cRepairTrace] = ...) -> Optional[str]:
        """The date text formatted for the date format name ('DATEFR' ... 'DATEIT' select their month names, others the English ones, then the general coercion); None on failure. Each step that changed or interpreted the text goes to `trace`."""
    def CoerceShortMonth(self, strWord: str) -> str:
        """A misread three-letter English month abbreviation repaired ('0CT' -> 'OCT'); any other word unchanged."""
    def CoerceShortMonthInString(self, strInOut: str, trace: Optional[cRepairTrace] = ...) -> str:
        """The text with its one misread month abbreviation repaired (none or several: unchanged); recorded in `trace` as 'month-repaired'."""
    def Elements(self) -> List[cPatternElement]:
        """The loaded specification's elements (copies)."""
    def EvaluatedText(self) -> str:
        """The text of the last Execute() after space removal."""
    def Execute(self, strText: str) -> None:
        """Matches RegExpFormat against the text (and, with PerformCoertion, its coerced variations). Raises pelinor.Error with the library's message on failure. Candidates() then holds the results."""
    def LoadCharacterMappings(self, strPath: _Path) -> None:
        """Loads a character-mapping file into CharMapper; raises pelinor.Error on failure."""
    def LoadSBSExpression(self, strSpec: str) -> None:
        """Loads a pattern specification: sets SBSFormat, RegExpFormats and RegExpFormat. Raises pelinor.Error with the library's message for an illegal specification."""
    PerformCoertion: bool
    @staticmethod
    def PipeExpressionToSBS(strExpression: str) -> str:
        """'A|B|C' gives '(A)(B)(C)'."""
    RegExpFormat: object
    RegExpFormats: StringCollection
    SBSFormat: object
    SuppressSpaces: bool
    def VariationCount(self) -> int:
        """The number of variations the last Execute() generated."""
    def __init__(self) -> None:
        ...
    @staticmethod
    def coerceFrenchDate(strIn: str) -> Optional[str]:
        """As coerceNameDate() for French month names."""
    @staticmethod
    def coerceGermanDate(strIn: str) -> Optional[str]:
        """As coerceNameDate() for German month names."""
    @staticmethod
    def coerceItalianDate(strIn: str) -> Optional[str]:
        """As coerceNameDate() for Italian month names."""
    def coerceNameDate(self, strIn: str, trace: Optional[cRepairTrace] = ...) -> Optional[str]:
        """The stored form of a date written with an English month name ('12 0CT 2003'), or None; its steps go to `trace`."""
    @staticmethod
    def coercePortugueseDate(strIn: str) -> Optional[str]:
        """As coerceNameDate() for Portuguese month names."""
    @staticmethod
    def coerceSpanishDate(strIn: str) -> Optional[str]:
        """As coerceNameDate() for Spanish month names."""

class cPelinorState:
    """A document state of a profile with its messages."""
    OnHoldDisplayMessage: object
    State: int
    def __init__(self) -> None:
        ...
    tbcDisplayMessage: object

class cProfile:
    """A capture profile: scripts, directories, document-handling switches, permitted users, document states, hold and delete reasons, field types and line-item header types. ReadSettings() adds to what the profile holds; Purge() first to reuse one."""
    Allowed: StringCollection
    DeletePrompt: int
    DeleteReasons: StringCollection
    DeleteScript: object
    DisplayName: object
    DocEndMarkInclusive: int
    DocEndMarkSideMode: int
    ExpectedAttachments: int
    ExportScript: object
    FieldTypes: FieldTypeCollection
    def FileVersion(self) -> str:
        """The library's version."""
    def FindAllowableUser(self, strName: str) -> bool:
        """Whether `strName` is allowed (case matters)."""
    def FindField(self, strFieldName: str) -> cFieldType:
        """The first field type named `strFieldName` (ignoring case), or None. Pseudo field types are not searched."""
    def FindLineItemHdr(self, strLineHdrName: str) -> Optional[Tuple[cLineHdrType, int]]:
        """(header, one-based index) of the first line-item header named `strLineHdrName` (ignoring case), or None."""
    FlattenDuplex: int
    InternalValidateLevel: int
    InvalidState: int
    LastClientViewMode: int
    LineDataEntitySpaceMax: object
    LineDataRowSpaceMax: object
    LineItemHdrs: LineHdrTypeCollection
    LineLevel: int
    LineLevelEnabled: int
    Name: object
    OCREnabled: int
    OCRPages: int
    OnEntryScript: object
    OnHoldReasons: StringCollection
    OutputPagesText: int
    PelinorStates: PelinorStateCollection
    PseudoFieldTypes: FieldTypeCollection
    def Purge(self) -> None:
        """Empties every collection."""
    QueueDirLocal: object
    QueueDirRemote: object
    def ReadSetting(self, FileName: _Path, Section: str = ..., Name: str = ...) -> str:
        """The 'DisplayName' of section 'Main' of the settings file ('' when absent); `Section` and `Name` are not used."""
    def ReadSettings(self, ProfileName: str, FileName: _Path) -> None:
        """Reads the profile settings file `FileName` (settings form from version 0.91 on, record form before). Raises pelinor.Error with the library's message ('Invalid version number', 'Cannot find file ' + name, ...); what was read before stays set."""
    RejectScript: object
    TemplateConfig: object
    TemplateDetectPages: object
    TemplateDir: object
    ValidateScript: object
    Version: object
    def WriteSettings(self, FileName: _Path) -> None:
        """Writes the record form to `FileName`. Raises pelinor.Error ('Cannot create file ' + name, ...); no half-written file is left."""
    def __init__(self) -> None:
        ...

class cQueue:
    """The documents waiting in a profile's queue and the filters that build the queue a worker should see. Each filter appends to `QueueOut` (a new queue when None) and answers it; entries are shared, never copied."""
    def FilterToExport(self, QueueOut: Optional[cQueue] = ...) -> cQueue:
        """The entries in state 3."""
    def Find(self, DocId: str) -> Optional[Tuple[int, cQueueEntry]]:
        """(one-based index, entry) of the first entry with DocId (ignoring case), or None."""
    def GetDocumentsToCapture(self, QueueOut: Optional[cQueue] = ...) -> cQueue:
        """The entries not rejected, in state 0, that are Unpacked or have a DepositType other than 2, 3 and 4."""
    def GetDocumentsToUnpack(self, QueueOut: Optional[cQueue] = ...) -> cQueue:
        """The entries not rejected, in state 0, with DepositType 2, 3 or 4 and not yet Unpacked."""
    def PrioritiseOldestLeastProcessed(self, QueueOut: Optional[cQueue] = ..., lTimeMode: int = ...) -> cQueue:
        """Every entry: not identified, identified, extracted; oldest first within a level."""
    def PrioritiseOldestMostProcessed(self, QueueOut: Optional[cQueue] = ..., lTimeMode: int = ...) -> cQueue:
        """Every entry: extracted, identified, not identified; oldest first within a level."""
    def PrioritisePELINORStates(self, Mode: int, QueueOut: Optional[cQueue] = ...) -> cQueue:
        """The entries whose PELINOR_State is `Mode`, least processed first, oldest first."""
    def PrioritiseRejectedRecords(self, Mode: int, QueueOut: Optional[cQueue] = ...) -> cQueue:
        """kRejectedFirst: rejected then the others; kRejectedOnly; kNotRejectedOnly."""
    def PrioritiseViewableDeferredDocuments(self, Mode: int, QueueOut: Optional[cQueue] = ...) -> cQueue:
        """The documents put aside in states 100 to 199, by state, then oldest first."""
    def PrioritiseViewableDocuments(self, Mode: int, QueueOut: Optional[cQueue] = ..., lTimeMode: int = ...) -> cQueue:
        """The documents a person can open, most processed first, oldest first by the time `lTimeMode` selects."""
    QueueEntries: QueueEntryCollection
    def ReadSettings(self, FileName: _Path) -> None:
        """Reads the queue file, appending its entries. Raises pelinor.Error with the library's message; the entries read before the failing record stay."""
    Version: object
    def WriteSettings(self, FileName: _Path) -> None:
        """Writes the queue file; raises pelinor.Error with no file left on failure."""
    def __init__(self) -> None:
        ...

class cQueueEntry:
    """The status record of one captured document in the work queue."""
    CaptureState: int
    def Copy(self) -> cQueueEntry:
        """A new entry with every property of this one."""
    DataValid: int
    DepositType: int
    DocId: object
    ExportProcess: object
    FieldsOCRExtracted: bool
    ID2Height: object
    ID2Identifier: object
    ID2Page: object
    ID2Text: object
    ID2Width: object
    ID2X: object
    ID2Y: object
    LookupScript: object
    ManualCheckNeeded: bool
    ManuallyAccepted: bool
    OCRConfidence: int
    OCRMinConfidence: int
    OCRPerformed: bool
    OCRRequest: int
    PELINOR_State: int
    PageCount: int
    PelinorProfile: object
    Priority: int
    def ReadRejectMessage(self, FileName: _Path) -> str:
        """The message of the reject message file; raises pelinor.Error."""
    def ReadSettings(self, FileName: _Path) -> None:
        """Reads the queue status file. Raises pelinor.Error with the library's message; the items read before stay set."""
    Reject: bool
    ScannerProfile: object
    Slot: int
    TemplateCountry: object
    TemplateDisplayName: object
    TemplateIDFormat: object
    TemplateIDHeight: object
    TemplateIDPage: object
    TemplateIDText: object
    TemplateIDWidth: object
    TemplateIDX: object
    TemplateIDY: object
    TemplateIdentified: bool
    TemplateIdentifier: object
    TemplateSubType: object
    TemplateType: object
    TimeLastModified: object
    TimeScanned: object
    Unpacked: bool
    Version: object
    def WriteRejectMessage(self, strMsg: str, FileName: _Path) -> None:
        """Writes the reject message file (one line of message)."""
    def WriteSettings(self, FileName: _Path) -> None:
        """Writes the queue status file, replacing any old one only when complete. Raises pelinor.Error with no file left on failure."""
    def __init__(self) -> None:
        ...
    dtTimeLastModified: float
    dtTimeScanned: float

class cQueueSlot:
    """A document's data paired with its queue entry."""
    DocumentData: cDocumentData
    QueueEntry: cQueueEntry
    def __init__(self) -> None:
        ...

class cQueueSlots:
    """The open slots."""
    def Clear(self) -> None:
        """Removes every slot, last first."""
    Slots: QueueSlotCollection
    def __init__(self) -> None:
        ...

class cRegistry:
    """Machine-wide and per-user registry settings. Elsewhere than Windows both stores are '.reg' text files named by PELINOR_REGISTRY and PELINOR_USER_REGISTRY. Reads fall back to the default; writes answer a status (0 success, -1 key not available, -10 write failed)."""
    def RegDelete(self, hive: int, application: str, section: str) -> int:
        """Deletes a section; 0, or the status of the failed delete."""
    def RegGetStringValue(self, hive: int, keyPath: str, valueName: str, strDefault: str = ...) -> str:
        """A value read through a 1024-byte buffer, or `strDefault` when it is missing, too long or empty."""
    def RegGetValue(self, hive: int, application: str, section: str, key: str, strDefault: str = ...) -> str:
        """A setting of an application's section, or `strDefault`."""
    def RegSaveValue(self, hive: int, application: str, section: str, key: str, value: str) -> int:
        """Writes a setting; answers the status of the write."""
    def RegSetStringValue(self, hive: int, keyPath: str, valueName: str, value: str) -> int:
        """Writes a string value; 0, -1 or -10."""
    def __init__(self) -> None:
        ...

class cRepairStep:
    """One step of a repair trace: the rule's code, a sentence, the one-based position in the text given (0: the whole value), the part before and after, and the risk class ('cosmetic', 'repair', 'guess')."""
    After: object
    Before: object
    Position: int
    Risk: object
    Rule: object
    Sentence: object

class cRepairTrace:
    """What the formatter and the pattern engine changed in an OCR text, or how they read it, step by step. Pass one as `trace` to a Format...() routine, CoerceDate() or EvaluatePattern(); results are the same with or without one."""
    def Clear(self) -> None:
        """Removes every step."""
    def Highest(self, from_: int = ...) -> str:
        """The highest risk class among the steps from `from_` on; '' when there are none."""
    def Sentences(self, from_: int = ...) -> str:
        """The sentences of the steps from `from_` on, joined by '; '."""
    def Size(self) -> int:
        """The number of steps."""
    def Steps(self) -> List[cRepairStep]:
        """The steps in order (copies)."""
    def __init__(self) -> None:
        ...
    def __len__(self) -> int:
        ...

class cSettingsSnapshot:
    """The server settings a batch reads once: the date locale, the profile directory and its 'CharMap.txt'. Immutable; made with Take() or Make()."""
    def CharMapError(self) -> str:
        """The loader's message when the mapping file could not be read."""
    def CharMapPath(self) -> _Path:
        """The path of 'CharMap.txt' in ProfileDir(), or ''."""
    def Locale(self, strDefault: str = ...) -> str:
        """'HalvernLocale' as read, or `strDefault` when it was not set."""
    @staticmethod
    def Make(locale: Optional[str], profile_dir: _Path = ...) -> cSettingsSnapshot:
        """A snapshot from given values: `locale` as 'HalvernLocale' would hold it (None: not set), `profile_dir` the directory of 'CharMap.txt' ('' for none)."""
    def ProfileDir(self) -> _Path:
        """The resolved profile directory; '' when none is set."""
    @staticmethod
    def Take() -> cSettingsSnapshot:
        """Reads 'HalvernLocale' and 'ProfileDir' from the machine-wide settings and loads 'CharMap.txt' from that directory."""

class cTableExtract:
    """A line table of a template."""
    BottomAnchorRef: object
    BottomAnchorRefs: AnchorRefCollection
    Columns: ColumnExtractCollection
    def CreateBottomAnchorRef(self) -> cAnchorRef:
        ...
    def CreateColumn(self) -> cColumnExtract:
        ...
    def CreateTopAnchorRef(self) -> cAnchorRef:
        ...
    Height: int
    Left: int
    Location: int
    PageExtract: int
    SheetNo: int
    Top: int
    TopAnchorRef: object
    TopAnchorRefs: AnchorRefCollection
    Width: int
    def __init__(self) -> None:
        ...

class cTemplate:
    """One document layout of a capture profile. Made with New() (or cTemplate()). Properties marked inheriting read the profile's value until the template sets its own."""
    def ContentReuseOverride(self) -> int:
        """From the marker files: -1 none, 0 '.crm_auto', 1 '.crm_content', 2 '.crm_donotuse'."""
    def Copy(self) -> cTemplate:
        """A deep copy (a new template; Profile is shared)."""
    def CreateDocEndMark(self) -> cAnchorRef:
        """Appends a new document-end mark."""
    def CreateExtractZones(self) -> cExtractZones:
        """Appends a new field entry pointing to this template."""
    def CreateLineHeader(self) -> cLineHdrType:
        """Appends a line header with no overrides."""
    def CreateLineTable(self) -> cTableExtract:
        """Appends a new line table."""
    def CreatePseudoExtractZones(self) -> cExtractZones:
        """Appends a new pseudo-field entry."""
    def DAInvoicesOverride(self) -> int:
        """From the marker files: -1 none, 0 '.neverDA', 1 '.alwaysDA'."""
    Disambiguate: int
    DocEndMarkInclusive: object
    DocEndMarkSideMode: object
    DocEndMarks: AnchorRefCollection
    ExpectedAttachments: object
    ExtractType: int
    FieldZoneRefs: ExtractZonesCollection
    def FindFieldZones(self, strFieldName: str) -> cExtractZones:
        """The first field entry for `strFieldName` (ignoring case), or None."""
    def FindLineHeaders(self, strName: str) -> cLineHdrType:
        """The first line header named `strName`, or None."""
    def FindPseudoFieldZones(self, strFieldName: str) -> cExtractZones:
        """The first pseudo-field entry for `strFieldName`, or None."""
    FlattenDuplex: object
    LineDataDiscardEnd: int
    LineDataDiscardStart: int
    LineDataEntitySpaceMax: object
    LineDataPartition: int
    LineDataRowSpaceMax: object
    LineDataVertAlignTol: object
    LineHeaders: LineHdrTypeCollection
    LineLevel: object
    LineTables: TableExtractCollection
    @staticmethod
    def New() -> cTemplate:
        """Makes an empty template."""
    OCRPages: object
    PelinorProfile: object
    Profile: cProfile
    PseudoFieldZoneRefs: ExtractZonesCollection
    def Purge(self) -> None:
        """Empties the entries, marks, rules, conditions and line headers."""
    def PurgeTplLineTables(self) -> None:
        """Empties LineTables."""
    def ReadSettings(self, FileName: _Path) -> None:
        """Reads the template file of any version, adding to the collections, then applies the marker files. Raises pelinor.Error with the library's message; what was read stays set."""
    ScannerProfile: object
    TemplateDisambiguatedID: object
    TemplateIDDatumX: object
    TemplateIDDatumY: object
    TemplateIdentifier: object
    TimeLastModified: object
    UserData: object
    UserDataPrimary: int
    UserName: object
    Version: object
    def WriteSettings(self, FileName: _Path) -> None:
        """Writes the template file in the current version; raises pelinor.Error, leaving no half-written file."""
    def __init__(self) -> None:
        ...
    def dtTimeLastModified(self) -> float:
        """TimeLastModified as a serial date (days from 1899-12-30), or 0."""

def CaptureDocument(doc: cDocumentData, options: Optional[cCaptureOptions] = ..., settings: Optional[cSettingsSnapshot] = ...) -> cCaptureReport:
    """Captures `doc` with its Profile and Template: every field and cell is validated for its data type, cleaned where the OCR text allows, and given a status and a message; rows and the document get a status from their values. With `settings` no registry value and no file is read for a value. Raises ValueError when doc.Profile is None."""

def CharMapPath() -> _Path:
    """The path of 'CharMap.txt' in the directory named by 'ProfileDir', or '' when that setting is missing or empty."""

def CollectTagFiles(inputs: List[_Path]) -> List[_Path]:
    """The documents named by `inputs`: a file as given, a directory's '*.tag' files at any depth in name order. Raises pelinor.Error for an input that does not exist."""

def EvaluatePattern(strText: str, strPatternSpec: str, bCoerce: bool = ..., bSuppressSpaces: bool = ..., bWhole: bool = ..., bKeepSurrounding: bool = ..., strLogFile: _Path = ..., settings: Optional[cSettingsSnapshot] = ..., trace: Optional[cRepairTrace] = ...) -> str:
    """Checks `strText` against `strPatternSpec` and answers the chosen value: with `bWhole` the matches must cover the whole text, otherwise the longest matched text is taken (with the text around it when `bKeepSurrounding`). `bCoerce` also tries coerced variations; `bSuppressSpaces` removes the text's spaces first. Raises pelinor.Error with the mapping file's message, the matching message or kPatternValidationError. Progress lines go to `strLogFile` when given. With `settings` the snapshot's mappings are used and neither the registry nor the mapping file is read. With `trace`, a successful evaluation records the spaces removed, each character a variation mapped and the text left outside the matches."""

def ReadServerSetting(valueName: str, strDefault: str = ...) -> str:
    """The server's setting ('HalvernLocale', 'ProfileDir') from HKEY_LOCAL_MACHINE, or `strDefault`."""

def RegReadString(hive: int, keyPath: str, valueName: str, strDefault: str = ...) -> str:
    """Reads a value with the rules of cRegistry.RegGetStringValue()."""

def ValidatePatternValue(strText: str, strPatternSpec: str, bCoerce: bool = ..., trace: Optional[cRepairTrace] = ...) -> str:
    """The value chosen by a whole match with spaces kept and no log; raises pelinor.Error as EvaluatePattern() does; steps go to `trace`."""
