/** When the harbour office is open, by the hour. */
export const opening = {
    summer: { from: 7, until: 21 },
    winter: { from: 9, until: 16 },
};

/** How long a berth is held for a skipper who is paying. */
export const holdMinutes = 15;
