/** A height for people: "3.4 m". */
export function formatHeight(metres: number): string {
    return `${metres.toFixed(1)} m`;
}

/** A price in cents for people: "12.50 €". */
export function formatPrice(cents: number): string {
    return `${(cents / 100).toFixed(2)} €`;
}

/** The time of day at a station: "06:42". */
export function formatTime(at: Date, zone: string): string {
    return at.toLocaleTimeString("en-GB", { hour: "2-digit", minute: "2-digit", timeZone: zone });
}
