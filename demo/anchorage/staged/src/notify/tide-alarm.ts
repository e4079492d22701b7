import { Berth } from "../berths";
import { Station } from "../station";
import { clears } from "../tides";

/** The berths whose boats will touch the ground before the next morning. */
export function berthsToWarn(station: Station, berths: Berth[], now: Date): Berth[] {
    const morning = new Date(now.getTime() + 12 * 3_600_000);
    return berths.filter(
        (berth) => berth.boat && !clears(station, berth.boat.draughtMetres, now, morning),
    );
}
