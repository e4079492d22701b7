/** When the harbour office is open, by the hour. */
export const opening = {
    summer: { from: 7, until: 21 },
    winter: { from: 8, until: 17 },
};

/** How long a berth is held for a skipper who is paying. */
export const holdMinutes = 15;
