import { readFileSync } from "node:fs";

/** Reads the printed almanac's columns: station, date, four times with their heights. */
export function readAlmanac(path: string): string[][] {
    return readFileSync(path, "latin1")
        .split("\n")
        .filter((line) => line.length === 80)
        .map((line) => [line.slice(0, 12), line.slice(12, 20), line.slice(20)]);
}
